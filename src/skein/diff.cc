#include "skein/diff.h"

#include <algorithm>
#include <array>
#include <vector>

#include "reader/menu_path.h"
#include "reader/node_kind.h"
#include "reader/text_escape.h"
#include "reader/tree_diff.h"
#include "skein/exit_status.h"

namespace Orvane {
namespace {

constexpr std::array<std::string_view, 5> kChangeNames = {"removed", "added", "moved", "reordered",
                                                          "changed"};
constexpr std::array<char, 5> kChangeMarks = {'-', '+', '>', '>', '~'};
constexpr std::array<Ink, 5> kChangeInks = {Ink::kRemoved, Ink::kAdded, Ink::kChanged,
                                            Ink::kChanged, Ink::kChanged};

std::size_t numberOf(Change change) {
  return static_cast<std::size_t>(change);
}

// One of the two inventories, with what is needed to talk about its records.
class Side {
 public:
  explicit Side(const NamedInventory& inventory)
      : file(inventory.file), index(inventory.view), path_(inventory.view, index.parents()) {}

  std::string path(std::uint32_t record) const { return path_.of(record); }

  RecordLinks links(std::uint32_t record) const { return index.view().links(record); }
  ItemView item(std::uint32_t record) const { return index.view().itemOf(record); }
  std::string_view kind(std::uint32_t record) const {
    return kindOf(links(record).isLeaf(), item(record).recType());
  }

  // The place of a record among its siblings, from 1.
  std::uint64_t position(std::uint32_t record) const {
    // The root, which has no parent, comes out as 1 as well.
    return record - links(index.parents()[record]).firstChildIndex + 1;
  }

  // The record and all below it.
  std::uint64_t subtreeSize(std::uint32_t record) const {
    std::uint64_t size = 0;
    std::vector<std::uint32_t> pending = {record};
    while (!pending.empty()) {
      const TreeIndex::Family family = index.children(pending.back());
      pending.pop_back();
      ++size;
      for (std::uint32_t i = 0; i < family.count; ++i) pending.push_back(family.first + i);
    }
    return size;
  }

  const std::string_view file;
  const TreeIndex index;

 private:
  const MenuPath path_;
};

struct FieldValues {
  std::string_view name;
  std::string first;
  std::string second;
};

std::vector<FieldValues> changedFields(const Side& a, const Side& b, const Difference& difference) {
  const ItemView left = a.item(difference.first);
  const ItemView right = b.item(difference.second);
  std::vector<FieldValues> values;
  const auto add = [&](DifferingField field, std::string_view name, const auto& first,
                       const auto& second) {
    if ((difference.fields & field) == 0) return;
    values.push_back({name, std::to_string(first), std::to_string(second)});
  };
  if ((difference.fields & kDiffersInKind) != 0) {
    values.push_back(
        {"kind", std::string(a.kind(difference.first)), std::string(b.kind(difference.second))});
  }
  add(kDiffersInMediaId, "mediaId", left.mediaId(), right.mediaId());
  add(kDiffersInRecType, "recType", left.recType(), right.recType());
  add(kDiffersInRating, "rating", left.rating(), right.rating());
  add(kDiffersInAttribMask, "attribMask", left.attribMask(), right.attribMask());
  add(kDiffersInChildCount, "childCount", a.links(difference.first).childCount,
      b.links(difference.second).childCount);
  if ((difference.fields & kDiffersInNameTail) != 0) {
    values.push_back({"nameField", escaped(left.nameField()), escaped(right.nameField())});
  }
  return values;
}

class TextReport {
 public:
  TextReport(const Side& a, const Side& b, Printing& printing)
      : a_(a), b_(b), out_(printing.out), style_(printing.style) {}

  void difference(const Difference& difference) {
    const std::size_t number = numberOf(difference.change);
    out_.put(style_.begin(kChangeInks[number]));
    out_.put(kChangeMarks[number]);
    out_.put(' ');
    switch (difference.change) {
      case Change::kRemoved:
        subtree(a_, difference.first);
        break;
      case Change::kAdded:
        subtree(b_, difference.second);
        break;
      case Change::kMoved:
        moved(difference);
        break;
      case Change::kReordered:
        out_.put(a_.path(difference.first));
        out_.put(": position ");
        out_.number(a_.position(difference.first));
        out_.put(" -> ");
        out_.number(b_.position(difference.second));
        break;
      case Change::kChanged:
        changed(difference);
        break;
    }
    out_.put(style_.end());
    out_.put('\n');
  }

 private:
  void subtree(const Side& side, std::uint32_t record) {
    out_.put(side.path(record));
    out_.put(" (");
    out_.put(side.kind(record));
    const std::uint64_t size = side.subtreeSize(record);
    if (size > 1) {
      out_.put(", ");
      out_.number(size);
      out_.put(" records");
    }
    out_.put(')');
  }

  void moved(const Difference& difference) {
    if (difference.first == 0) {
      out_.put("/: name \"");
      out_.put(escaped(a_.item(0).name(), "\""));
      out_.put("\" -> \"");
      out_.put(escaped(b_.item(0).name(), "\""));
      out_.put('"');
      return;
    }
    out_.put(a_.path(difference.first));
    out_.put(" -> ");
    out_.put(b_.path(difference.second));
  }

  void changed(const Difference& difference) {
    out_.put(a_.path(difference.first));
    std::string_view separator = ": ";
    for (const FieldValues& field : changedFields(a_, b_, difference)) {
      out_.put(separator);
      separator = ", ";
      out_.put(field.name);
      out_.put(' ');
      out_.put(field.first);
      out_.put(" -> ");
      out_.put(field.second);
    }
    if (difference.shared) out_.put(" (shared data record)");
  }

  const Side& a_;
  const Side& b_;
  OutputBuffer& out_;
  const Style& style_;
};

class JsonReport {
 public:
  JsonReport(const Side& a, const Side& b, Printing& printing)
      : a_(a), b_(b), json_(printing.out), lines_(printing.format == Format::kJsonLines) {}

  void begin() {
    json_.beginObject();
    json_.field("schema", kDiffSchema);
    if (lines_) json_.field("type", "files");
    side("first", a_);
    side("second", b_);
    if (lines_) {
      json_.endObject();
      json_.endLine();
      return;
    }
    json_.key("differences");
    json_.beginArray();
  }

  void difference(const Difference& difference) {
    json_.beginObject();
    json_.field("type", "difference");
    json_.field("change", kChangeNames[numberOf(difference.change)]);
    place("first", a_, difference.first);
    place("second", b_, difference.second);
    if (difference.change == Change::kChanged) {
      json_.key("fields");
      json_.beginArray();
      for (const FieldValues& field : changedFields(a_, b_, difference)) {
        json_.beginObject();
        json_.field("name", field.name);
        json_.field("first", field.first);
        json_.field("second", field.second);
        json_.endObject();
      }
      json_.endArray();
      json_.key("shared");
      json_.boolean(difference.shared);
    }
    json_.endObject();
    if (lines_) json_.endLine();
  }

  void end(const std::array<std::uint64_t, 5>& counts, int status) {
    if (lines_) {
      json_.beginObject();
      json_.field("type", "end");
    } else {
      json_.endArray();
    }
    json_.key("counts");
    json_.beginObject();
    for (std::size_t i = 0; i < counts.size(); ++i) json_.field(kChangeNames[i], counts[i]);
    json_.endObject();
    json_.field("status", static_cast<std::uint64_t>(status));
    json_.endObject();
    json_.endLine();
  }

 private:
  void side(std::string_view key, const Side& side) {
    json_.key(key);
    json_.beginObject();
    json_.nameField("file", side.file, side.file);
    json_.field("layout", nameOf(side.index.view().layout()));
    json_.field("records", side.index.view().recordCount());
    json_.key("damaged");
    json_.boolean(side.index.damaged());
    json_.endObject();
  }

  void place(std::string_view key, const Side& side, std::uint32_t record) {
    json_.key(key);
    if (record == kNoRecord) {
      json_.null();
      return;
    }
    json_.beginObject();
    json_.field("record", record);
    json_.field("path", side.path(record));
    json_.field("kind", side.kind(record));
    json_.field("position", side.position(record));
    json_.endObject();
  }

  const Side& a_;
  const Side& b_;
  JsonWriter json_;
  const bool lines_;
};

void putStat(const std::array<std::uint64_t, 5>& counts, OutputBuffer& out) {
  std::string_view separator;
  for (const Change change :
       {Change::kAdded, Change::kRemoved, Change::kMoved, Change::kReordered, Change::kChanged}) {
    out.put(separator);
    separator = ", ";
    out.number(counts[numberOf(change)]);
    out.put(' ');
    out.put(kChangeNames[numberOf(change)]);
  }
  out.put('\n');
}

void reportDamage(const Side& side, Printing& printing) {
  if (!side.index.damaged()) return;
  printing.diagnostics.error(side.file,
                             "damaged, compared in part; for the faults run: skein check");
}

}  // namespace

int diffInventories(const NamedInventory& first, const NamedInventory& second,
                    const DiffOptions& options, Printing& printing) {
  const Side a(first);
  const Side b(second);
  const bool same = std::ranges::equal(first.view.bytes(), second.view.bytes());
  std::vector<Difference> differences;
  if (!same) differences = TreeDiff(a.index, b.index).run();
  std::array<std::uint64_t, 5> counts{};
  for (const Difference& difference : differences) ++counts[numberOf(difference.change)];
  int status = differences.empty() ? kStatusYes : kStatusNo;
  if (!same && (a.index.damaged() || b.index.damaged())) status = kStatusNo;

  if (printing.format != Format::kText) {
    JsonReport report(a, b, printing);
    report.begin();
    if (!options.statOnly) {
      for (const Difference& difference : differences) report.difference(difference);
    }
    report.end(counts, status);
  } else if (options.statOnly) {
    if (!differences.empty()) putStat(counts, printing.out);
  } else {
    TextReport report(a, b, printing);
    for (const Difference& difference : differences) report.difference(difference);
  }
  if (!same) {
    reportDamage(a, printing);
    reportDamage(b, printing);
  }
  return status;
}

}  // namespace Orvane
