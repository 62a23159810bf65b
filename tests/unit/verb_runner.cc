#include "verb_runner.h"

#include "skein/annotate.h"
#include "skein/exit_status.h"
#include "skein/stats.h"

namespace Orvane {
namespace {

// Standard output and error of one run, in memory.
struct Streams {
  StringSink outSink;
  StringSink errSink;
  OutputBuffer out{outSink};
  OutputBuffer err{errSink};
  Diagnostics diagnostics{err, out, false};

  Printing printing(Format format) { return {out, diagnostics, format, Style(), false, false}; }

  VerbResult finish(int status) {
    out.flush();
    err.flush();
    return {status, outSink.text(), errSink.text()};
  }
};

VerbResult runOn(Bytes bytes, std::string_view schema, Format format, const InventoryWork& work) {
  Streams streams;
  Printing printing = streams.printing(format);
  return streams.finish(workOnBytes(bytes, "a.inv", schema, printing, work));
}

}  // namespace

VerbResult dumpOf(Bytes bytes, Format format, const DumpOptions& options) {
  return runOn(bytes, kDumpSchema, format,
               [&](const InventoryJob& job) { return dumpInventory(job, options); });
}

VerbResult checkOf(Bytes bytes, Format format, const FindingPrinter::Options& options) {
  return runOn(bytes, kCheckSchema, format,
               [&](const InventoryJob& job) { return checkInventory(job, options); });
}

VerbResult annotateOf(Bytes bytes) {
  return runOn(bytes, {}, Format::kText, annotateInventory);
}

VerbResult statsOf(Bytes bytes, Format format) {
  return runOn(bytes, kStatsSchema, format, printStats);
}

VerbResult decompileOf(Bytes bytes) {
  Streams streams;
  Printing messages{streams.err, streams.diagnostics};
  const int status = workOnBytes(bytes, "a.inv", {}, messages, [&](const InventoryJob& job) {
    return decompileInventory(job, {}, streams.out);
  });
  return streams.finish(status);
}

VerbResult diffOf(Bytes first, Bytes second, Format format, const DiffOptions& options) {
  Streams streams;
  Printing printing = streams.printing(format);
  std::string reason;
  const auto a = InventoryView::open(first, reason);
  const auto b = InventoryView::open(second, reason);
  if (!a || !b) return streams.finish(kStatusTrouble);
  return streams.finish(diffInventories({*a, "a.inv"}, {*b, "b.inv"}, options, printing));
}

}  // namespace Orvane
