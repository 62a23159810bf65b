#include "skein/stats.h"

#include <algorithm>

#include "reader/inventory_check.h"
#include "reader/inventory_stats.h"
#include "reader/menu_path.h"
#include "reader/text_escape.h"
#include "skein/exit_status.h"

namespace Orvane {
namespace {

// Counts the errors among findings.
class ErrorCount : public FindingSink {
 public:
  void found(const Finding& finding) override {
    if (infoOf(finding.rule).severity == Severity::kError) ++count_;
  }
  std::uint64_t count() const { return count_; }

 private:
  std::uint64_t count_ = 0;
};

// The sizes that follow from the numbers of records.
struct Bytes {
  explicit Bytes(const InventoryView& view)
      : header(view.prefixSize()),
        firstTable(std::uint64_t{view.recordCount()} * InventoryView::recordSize(view.layout(), 0)),
        dataTable(view.layout() == Layout::kTwoTable
                      ? std::uint64_t{view.dataCount()} * kDataRecordSize
                      : 0),
        unshared(view.recordCount() > view.dataCount()
                     ? std::uint64_t{view.recordCount() - view.dataCount()} * kDataRecordSize
                     : 0) {
    const std::uint64_t size = view.bytes().size();
    other = size - std::min(size, header + firstTable + dataTable);
  }

  std::uint64_t header;
  std::uint64_t firstTable;
  std::uint64_t dataTable;
  std::uint64_t unshared;  // what data records of their own would take for those that share one
  std::uint64_t other = 0;
};

// The numbers of children that InventoryStats::byFanOut counts together at `step`.
std::uint64_t fewest(std::size_t step) {
  return (std::uint64_t{1} << step) >> 1;
}
std::uint64_t most(std::size_t step) {
  return (std::uint64_t{1} << step) - 1;
}

class StatsText {
 public:
  StatsText(const InventoryJob& job, const InventoryStats& stats, const MenuPath& path)
      : view_(job.view), out_(job.printing.out), stats_(stats), path_(path) {
    out_.put(escaped(job.file));
    out_.put(": ");
    out_.put(nameOf(view_.layout()));
    out_.put(" inventory\n");
  }

  void print() {
    row("records", stats_.reached);
    for (std::size_t i = 0; i < stats_.byKind.size(); ++i) {
      if (stats_.byKind[i] == 0) continue;
      row("  " + std::string(InventoryStats::kindName(i)), stats_.byKind[i]);
    }
    if (stats_.displaced != 0) row("  menus without stored contents", stats_.displaced);
    if (stats_.leavesWithCount != 0) row("  media with a child count", stats_.leavesWithCount);
    row("depth", stats_.depth, stats_.deepest == kNoRecord ? "" : path_.of(stats_.deepest));
    printFanOut();
    printBytes();
    printNames();
  }

 private:
  static constexpr std::size_t kLabel = 34;
  static constexpr std::size_t kNumber = 12;

  void row(std::string_view label, std::uint64_t number, std::string_view note = {}) {
    const std::string text = std::to_string(number);
    out_.put("  ");
    out_.put(label);
    out_.fill(' ', kLabel - std::min(kLabel, label.size()));
    out_.fill(' ', kNumber - std::min(kNumber, text.size()));
    out_.put(text);
    if (!note.empty()) {
      out_.put("  ");
      out_.put(note);
    }
    out_.put('\n');
  }

  void printFanOut() {
    out_.put("  menus by number of children\n");
    for (std::size_t i = 0; i < stats_.byFanOut.size(); ++i) {
      if (stats_.byFanOut[i] == 0) continue;
      std::string label = "    " + std::to_string(fewest(i));
      if (most(i) > fewest(i)) label += " to " + std::to_string(most(i));
      row(label, stats_.byFanOut[i]);
    }
    if (stats_.widest.empty()) return;
    out_.put("  widest menus\n");
    for (const InventoryStats::Menu& menu : stats_.widest) {
      row("    record " + std::to_string(menu.record), menu.children, path_.of(menu.record));
    }
  }

  void printBytes() {
    const Bytes bytes(view_);
    const bool twoTable = view_.layout() == Layout::kTwoTable;
    row("bytes", view_.bytes().size());
    row("  header and descriptors", bytes.header);
    row(twoTable ? "  tree table" : "  combined table", bytes.firstTable);
    if (twoTable) row("  data table", bytes.dataTable);
    if (bytes.other != 0) row("  other", bytes.other);
    if (!twoTable) return;
    row("data records", view_.dataCount());
    row("  bytes saved by sharing them", bytes.unshared);
  }

  void printNames() {
    row("names of 62 bytes, perhaps cut", stats_.byNameLength[InventoryStats::kCutName]);
    row("names of 64 bytes, unterminated", stats_.byNameLength[kNameFieldSize]);
  }

  const InventoryView& view_;
  OutputBuffer& out_;
  const InventoryStats& stats_;
  const MenuPath& path_;
};

void writeMembers(const InventoryJob& job, const InventoryStats& stats, const MenuPath& path) {
  JsonWriter& json = job.json;
  json.field("reached", stats.reached);
  json.key("kinds");
  json.beginObject();
  for (std::size_t i = 0; i < stats.byKind.size(); ++i) {
    json.field(InventoryStats::kindName(i), stats.byKind[i]);
  }
  json.endObject();
  json.field("displaced", stats.displaced);
  json.field("leavesWithCount", stats.leavesWithCount);
  json.field("depth", stats.depth);
  json.key("deepest");
  stats.deepest == kNoRecord ? json.null() : json.string(path.of(stats.deepest));
  json.key("fanOut");
  json.beginArray();
  for (std::size_t i = 0; i < stats.byFanOut.size(); ++i) {
    if (stats.byFanOut[i] == 0) continue;
    json.beginObject();
    json.field("from", fewest(i));
    json.field("to", most(i));
    json.field("menus", stats.byFanOut[i]);
    json.endObject();
  }
  json.endArray();
  json.key("widest");
  json.beginArray();
  for (const InventoryStats::Menu& menu : stats.widest) {
    json.beginObject();
    json.field("record", menu.record);
    json.field("path", path.of(menu.record));
    json.field("children", menu.children);
    json.endObject();
  }
  json.endArray();
  const Bytes bytes(job.view);
  json.key("tableBytes");
  json.beginObject();
  json.field("header", bytes.header);
  json.field("firstTable", bytes.firstTable);
  json.field("dataTable", bytes.dataTable);
  json.field("other", bytes.other);
  json.field("savedBySharing", bytes.unshared);
  json.endObject();
  json.field("namesOf62", stats.byNameLength[InventoryStats::kCutName]);
  json.field("namesOf64", stats.byNameLength[kNameFieldSize]);
}

}  // namespace

int printStats(const InventoryJob& job) {
  TreeWalk walk(job.view);
  const MenuPath path(job.view, walk.parents());
  ErrorCount errors;
  InventoryCheck check(job.view, errors);
  check.framing();
  const InventoryStats stats = collectStats(job.view, walk, check);
  if (job.printing.format == Format::kText) {
    StatsText(job, stats, path).print();
  } else {
    const bool lines = job.printing.format == Format::kJsonLines;
    if (lines) {
      job.json.beginObject();
      job.json.field("type", "stats");
    }
    writeMembers(job, stats, path);
    if (lines) {
      job.json.endObject();
      job.json.endLine();
    }
  }
  if (errors.count() == 0) return kStatusYes;
  job.printing.diagnostics.error(
      job.file, "damaged, counted is what can be reached; for the faults run: skein check");
  return kStatusNo;
}

}  // namespace Orvane
