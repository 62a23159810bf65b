#include "reader/annotation.h"

#include "reader/text_escape.h"

namespace Orvane {
namespace {

std::string quoted(std::string_view name) {
  std::string text = "\"";
  appendEscaped(text, name, "\"");
  return text + '"';
}

std::string hexMask(std::uint16_t mask) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "0x0000";
  for (std::size_t i = 0; i < 4; ++i) text[5 - i] = kDigits[mask >> (4 * i) & 15];
  return text;
}

std::string_view kindName(std::uint8_t kind) {
  switch (kind) {
    case static_cast<std::uint8_t>(TableKind::kTree):
      return "tree table";
    case static_cast<std::uint8_t>(TableKind::kData):
      return "data table";
    case static_cast<std::uint8_t>(TableKind::kCombined):
      return "combined table";
    default:
      return "unknown";
  }
}

}  // namespace

Annotation::Annotation(const TreeIndex& index, AnnotationSink& sink)
    : index_(index), view_(index.view()), path_(view_, index.parents()), sink_(sink) {
  firstUser_.assign(view_.dataCount(), kNoRecord);
  for (std::uint32_t i = 0; i < view_.recordCount(); ++i) {
    const std::uint32_t dataIndex = view_.links(i).dataIndex;
    if (dataIndex < firstUser_.size() && firstUser_[dataIndex] == kNoRecord) {
      firstUser_[dataIndex] = i;
    }
  }
}

void Annotation::run() {
  header();
  for (std::size_t table = 0; table < view_.tableCount(); ++table) descriptor(table);
  tables();
  unexplained(view_.bytes().size());
}

void Annotation::field(std::size_t size, std::string_view name, std::string value) {
  sink_.field({at_, size, name, std::move(value), false});
  at_ += size;
}

void Annotation::header() {
  sink_.section("file header");
  const FileHeaderFields found = view_.header();
  field(1, "zero", std::to_string(found.zero));
  field(1, "version", std::to_string(found.version));
  field(2, "reserved", std::to_string(found.reserved16));
  field(4, "reserved", std::to_string(found.reserved32));
  field(4, "tables", std::to_string(found.tableCount));
  field(4, "headerSize", std::to_string(found.headerSize));
}

void Annotation::descriptor(std::size_t table) {
  const auto found = view_.descriptor(table);
  if (!found) return;
  sink_.section("table descriptor " + std::to_string(table));
  field(1, "kind", std::to_string(found->kind) + " " + std::string(kindName(found->kind)));
  field(1, "version", std::to_string(found->version));
  field(2, "reserved", std::to_string(found->reserved));
  field(4, "offset", std::to_string(found->offset));
  field(4, "count", std::to_string(found->count));
  field(4, "recordSize", std::to_string(found->recordSize));
}

void Annotation::tables() {
  // Where there is one table, the second has no records.
  const bool turnedAround = view_.tableOffset(1) < view_.tableOffset(0);
  table(turnedAround ? 1 : 0);
  table(turnedAround ? 0 : 1);
}

void Annotation::table(std::size_t which) {
  const std::size_t size = InventoryView::recordSize(view_.layout(), which);
  const std::uint64_t begin = view_.tableOffset(which);
  // A table that begins inside what has been explained is entered at its next whole record.
  std::uint64_t first = begin < at_ ? (at_ - begin + size - 1) / size : 0;
  for (; first < view_.readableCount(which); ++first) {
    unexplained(begin + first * size);
    const auto number = static_cast<std::uint32_t>(first);
    if (which == 0) {
      record(number);
      continue;
    }
    std::string title = "data record " + std::to_string(number);
    const std::uint32_t user = firstUser_[number];
    if (user == kNoRecord) {
      title += ", used by no record";
    } else {
      title += ", of record " + std::to_string(user) + " (" + path_.of(user) + ")";
    }
    sink_.section(title);
    item(at_, view_.item(number));
  }
}

void Annotation::record(std::uint32_t record) {
  const RecordLinks links = view_.links(record);
  const bool twoTable = view_.layout() == Layout::kTwoTable;
  sink_.section((twoTable ? "tree record " : "node record ") + std::to_string(record) + " (" +
                path_.of(record) + ")");
  field(4, "firstChildIndex", firstChildValue(record, links));
  field(4, "childCount", std::to_string(links.childCount));
  if (twoTable) {
    field(4, "dataIndex", named("data record", links.dataIndex, view_.item(links.dataIndex)));
  } else {
    item(at_, view_.item(record));
  }
}

std::string Annotation::firstChildValue(std::uint32_t record, const RecordLinks& links) const {
  const std::uint32_t first = links.firstChildIndex;
  if (links.isLeaf()) return "none, a media leaf";
  if (links.childCount == 0) return std::to_string(first) + ", of no meaning without children";
  if (index_.isDisplaced(record)) return "0, contents not stored";
  return named("record", first, view_.itemOf(first));
}

std::string Annotation::named(std::string_view noun, std::uint32_t index, ItemView item) const {
  const std::string number = std::to_string(index);
  if (!item) return number + " -> nothing";
  return number + " -> " + std::string(noun) + " " + number + " " + quoted(item.name());
}

void Annotation::item(std::uint64_t offset, ItemView item) {
  at_ = offset;
  field(4, "mediaId", std::to_string(item.mediaId()));
  const std::string_view all = item.nameField();
  const std::string_view name = item.name();
  const std::size_t used = all.find_last_not_of('\0') + 1;  // 0 if nothing is found
  if (!name.empty()) field(name.size(), "name", quoted(name));
  if (used > name.size())
    field(used - name.size(), "name tail", quoted(all.substr(name.size(), used - name.size())));
  if (used < all.size()) {
    const std::string fill = std::to_string(all.size() - used) + " zero bytes";
    sink_.field({at_, all.size() - used, used == 0 ? "name" : "name fill",
                 used == 0 ? "\"\", " + fill : fill, true});
    at_ += all.size() - used;
  }
  field(1, "recType", std::to_string(item.recType()));
  field(1, "rating", std::to_string(item.rating()));
  field(2, "attribMask", hexMask(item.attribMask()));
}

void Annotation::unexplained(std::uint64_t offset) {
  if (offset <= at_) return;
  sink_.section("bytes outside the records");
  sink_.field({at_, offset - at_, "bytes", {}, false});
  at_ = offset;
}

}  // namespace Orvane
