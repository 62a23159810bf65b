#include "skein/check.h"

#include "reader/inventory_check.h"
#include "reader/text_escape.h"
#include "skein/exit_status.h"

namespace Orvane {
namespace {

void putCount(OutputBuffer& out, std::uint64_t count, std::string_view noun) {
  out.number(count);
  out.put(' ');
  out.put(noun);
  if (count != 1) out.put('s');
}

void printSummary(const InventoryJob& job, const FindingPrinter& printer) {
  OutputBuffer& out = job.printing.out;
  printOmitted(job, printer.omitted());
  if (!job.printing.verbose) return;
  out.put(escaped(job.file));
  out.put(": ");
  out.put(nameOf(job.view.layout()));
  out.put(" inventory of ");
  putCount(out, job.view.recordCount(), "record");
  out.put(": ");
  putCount(out, printer.errors(), "error");
  out.put(", ");
  putCount(out, printer.warnings(), "warning");
  out.put('\n');
}

void printTotals(const InventoryJob& job, const FindingPrinter& printer) {
  JsonWriter& json = job.json;
  const bool lines = job.printing.format == Format::kJsonLines;
  if (lines) {
    json.beginObject();
    json.field("type", "summary");
  }
  json.field("errors", printer.errors());
  json.field("warnings", printer.warnings());
  json.field("omitted", printer.omitted());
  if (!lines) return;
  json.endObject();
  json.endLine();
}

}  // namespace

int checkInventory(const InventoryJob& job, const FindingPrinter::Options& options) {
  TreeWalk walk(job.view);
  const MenuPath path(job.view, walk.parents());
  FindingPrinter printer(job, path, options);
  const bool array = job.printing.format == Format::kJson;
  if (array) {
    job.json.key("findings");
    job.json.beginArray();
  }
  InventoryCheck check(job.view, printer);
  check.run(walk);
  if (array) job.json.endArray();
  if (job.printing.format == Format::kText) {
    printSummary(job, printer);
  } else {
    printTotals(job, printer);
  }
  return printer.errors() == 0 ? kStatusYes : kStatusNo;
}

}  // namespace Orvane
