#include "skein/dump.h"

#include "reader/inventory_check.h"
#include "reader/text_escape.h"
#include "skein/exit_status.h"
#include "skein/finding_printer.h"
#include "skein/node_printer.h"

namespace Orvane {
namespace {

// Prints findings in between the records, below the one that was printed last.
class InlinePrinter : public FindingPrinter {
 public:
  InlinePrinter(const InventoryJob& job, const MenuPath& path, NodePrinter& nodes)
      : FindingPrinter(job, path, {}), nodes_(nodes) {}

  // The depth of the record that findings are about from now on.
  void setDepth(std::uint32_t depth) { depth_ = depth; }

 private:
  void print(const Finding& finding, Severity severity) override {
    if (job().printing.format != Format::kText) {
      printJson(finding, severity);
      return;
    }
    nodes_.indent(depth_);
    job().printing.out.put("! ");
    printVerdict(finding, severity);
  }

  NodePrinter& nodes_;
  std::uint32_t depth_ = 0;
};

class Dump {
 public:
  Dump(const InventoryJob& job, const DumpOptions& options)
      : job_(job),
        options_(options),
        walk_(job.view, WalkOrder::kMenu, options.record),
        path_(job.view, walk_.parents()),
        nodes_(job),
        findings_(job, path_, nodes_),
        check_(job.view, findings_) {}

  int run() {
    begin();
    check_.framing();
    bool complete = options_.path.empty() && options_.record == 0;
    TreeWalk::Event event{};
    do {
      event = walk_.next();
      if (event == TreeWalk::Event::kEnter) complete = visit(walk_.current()) && complete;
    } while (event != TreeWalk::Event::kEnd && !job_.printing.out.failed());
    findings_.setDepth(0);
    if (complete) check_.remainder(walk_.parents());
    if (job_.printing.format == Format::kJson) job_.json.endArray();
    return verdict();
  }

 private:
  void begin() {
    if (job_.printing.format == Format::kJson) {
      job_.json.key("entries");
      job_.json.beginArray();
    }
    if (job_.printing.format != Format::kText) return;
    OutputBuffer& out = job_.printing.out;
    out.put(escaped(job_.file));
    out.put(": ");
    out.put(nameOf(job_.view.layout()));
    out.put(" inventory, ");
    putCount(job_.view.bytes().size(), " byte");
    out.put(", ");
    putCount(job_.view.recordCount(), " record");
    if (job_.view.layout() == Layout::kTwoTable) {
      out.put(", ");
      putCount(job_.view.dataCount(), " data record");
    }
    out.put('\n');
  }

  void putCount(std::uint64_t count, std::string_view noun) {
    job_.printing.out.number(count);
    job_.printing.out.put(noun);
    if (count != 1) job_.printing.out.put('s');
  }

  // False if some of the record's descendants are left out.
  bool visit(const TreeWalk::Visit& visit) {
    constexpr std::uint32_t kAhead = 8;
    job_.view.prefetchItemOf(visit.record + kAhead);
    const std::uint32_t depth = visit.depth;
    const auto pathLength = static_cast<std::uint32_t>(options_.path.size());
    if (depth <= pathLength) {
      if (depth != 0 && job_.view.itemOf(visit.record).name() != options_.path[depth - 1]) {
        walk_.skipChildren();
        return false;
      }
      if (found_ < depth || depth == 0) found_ = depth;
      if (depth < pathLength) return true;
      any_ = true;
    }
    const std::uint32_t shownDepth = depth - pathLength;
    const std::uint32_t parent = walk_.parents()[visit.record];
    nodes_.print(visit, parent == TreeWalk::kStart ? kNoRecord : parent, shownDepth);
    findings_.setDepth(shownDepth + 1);
    check_.visit(visit, walk_.parents());
    if (shownDepth < options_.depth) return true;
    walk_.skipChildren();
    return visit.used == 0;
  }

  int verdict() {
    if (!any_ && (options_.record != 0 || !options_.path.empty())) {
      job_.printing.diagnostics.error(job_.file, missing());
      return kStatusNo;
    }
    if (findings_.errors() == 0) return kStatusYes;
    job_.printing.diagnostics.error(
        job_.file, "damaged, see the lines with \"!\"; for offsets and paths run: skein check");
    return kStatusNo;
  }

  std::string missing() const {
    if (options_.record >= job_.view.recordCount()) {
      return "no record " + std::to_string(options_.record) + ": the file has " +
             std::to_string(job_.view.recordCount());
    }
    std::string existing;
    for (std::uint32_t i = 0; i < found_; ++i) {
      existing += '/';
      appendEscaped(existing, options_.path[i], "/");
    }
    if (options_.record != 0) {
      if (!existing.empty()) existing += " below ";
      existing += "record ";
      existing += std::to_string(options_.record);
    } else if (existing.empty()) {
      existing += '/';
    }
    return "no \"" + escaped(options_.path[found_], "/") + "\" in " + existing;
  }

  const InventoryJob& job_;
  const DumpOptions& options_;
  TreeWalk walk_;
  const MenuPath path_;
  NodePrinter nodes_;
  InlinePrinter findings_;
  InventoryCheck check_;
  std::uint32_t found_ = 0;  // names of the path that have been found
  bool any_ = false;
};

}  // namespace

int dumpInventory(const InventoryJob& job, const DumpOptions& options) {
  return Dump(job, options).run();
}

}  // namespace Orvane
