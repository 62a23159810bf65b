#include "skein/finding_printer.h"

#include "reader/text_escape.h"

namespace Orvane {

void FindingPrinter::found(const Finding& finding) {
  const Severity severity = options_.settings.of(finding.rule);
  if (severity == Severity::kOff) return;
  if (severity == Severity::kError) {
    ++errors_;
  } else {
    ++warnings_;
    if (job_.printing.quiet) return;
  }
  if (printed_ == options_.limit) {
    ++omitted_;
    return;
  }
  ++printed_;
  print(finding, severity);
}

void FindingPrinter::print(const Finding& finding, Severity severity) {
  if (job_.printing.format != Format::kText) {
    printJson(finding, severity);
    return;
  }
  OutputBuffer& out = job_.printing.out;
  out.put(escaped(job_.file));
  out.put(":0x");
  out.hex(finding.offset, 1);
  out.put(": ");
  const std::string where = place(finding);
  if (!where.empty()) {
    out.put(where);
    out.put(": ");
  }
  printVerdict(finding, severity);
}

std::string FindingPrinter::place(const Finding& finding) const {
  std::string where;
  if (finding.record != kNoRecord) {
    where = "record " + std::to_string(finding.record);
    if (finding.rule != Rule::kUnreachableRecord) where += " (" + path_.of(finding.record) + ")";
  }
  if (finding.dataRecord != kNoRecord) {
    if (!where.empty()) where += ", ";
    where += "data record " + std::to_string(finding.dataRecord);
  }
  return where;
}

void FindingPrinter::printVerdict(const Finding& finding, Severity severity) {
  OutputBuffer& out = job_.printing.out;
  const Style& style = job_.printing.style;
  const bool error = severity == Severity::kError;
  out.put(style.begin(error ? Ink::kError : Ink::kWarning));
  out.put(error ? "error:" : "warning:");
  out.put(style.end());
  out.put(' ');
  out.put(describe(finding));
  out.put(" [");
  out.put(infoOf(finding.rule).name);
  out.put("]\n");
}

void FindingPrinter::printJson(const Finding& finding, Severity severity) {
  JsonWriter& json = job_.json;
  json.beginObject();
  json.field("type", "finding");
  json.field("rule", infoOf(finding.rule).name);
  json.field("severity", severity == Severity::kError ? "error" : "warning");
  json.field("offset", finding.offset);
  const bool placed = finding.record != kNoRecord && finding.rule != Rule::kUnreachableRecord;
  json.key("record");
  finding.record == kNoRecord ? json.null() : json.number(finding.record);
  json.key("dataRecord");
  finding.dataRecord == kNoRecord ? json.null() : json.number(finding.dataRecord);
  json.key("path");
  placed ? json.string(path_.of(finding.record)) : json.null();
  json.field("message", describe(finding));
  json.endObject();
  if (job_.printing.format == Format::kJsonLines) json.endLine();
}

void printOmitted(const InventoryJob& job, std::uint64_t count) {
  if (count == 0) return;
  OutputBuffer& out = job.printing.out;
  out.put(escaped(job.file));
  out.put(": ");
  out.number(count);
  out.put(count == 1 ? " more finding not shown\n" : " more findings not shown\n");
}

}  // namespace Orvane
