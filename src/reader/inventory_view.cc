#include "reader/inventory_view.h"

#include <algorithm>

namespace Orvane {
namespace {

FileHeaderFields readHeader(const std::uint8_t* at) {
  return {at[0], at[1], readLe16(at + 2), readLe32(at + 4), readLe32(at + 8), readLe32(at + 12)};
}

DescriptorFields readDescriptor(const std::uint8_t* at) {
  return {at[0], at[1], readLe16(at + 2), readLe32(at + 4), readLe32(at + 8), readLe32(at + 12)};
}

int wrongFields(const FileHeaderFields& header) {
  int wrong = 0;
  if (header.zero != 0) ++wrong;
  if (header.version != kFileHeaderVersion) ++wrong;
  if (header.reserved16 != 0) ++wrong;
  if (header.reserved32 != 0) ++wrong;
  if (header.tableCount != 1 && header.tableCount != 2) ++wrong;
  if (header.headerSize != kFileHeaderSize) ++wrong;
  return wrong;
}

// The table count, the kind of the first table and its record size all tell the layout. One of
// them may be damaged, so the majority decides; the count decides when the others are of no help.
std::optional<Layout> layoutOf(std::span<const std::uint8_t> bytes,
                               const FileHeaderFields& header) {
  int oneTable = header.tableCount == 1 ? 1 : 0;
  int twoTable = header.tableCount == 2 ? 1 : 0;
  const bool byCount = oneTable + twoTable != 0;
  if (bytes.size() >= kFileHeaderSize + kTableDescriptorSize) {
    const DescriptorFields first = readDescriptor(bytes.data() + kFileHeaderSize);
    if (first.kind == static_cast<std::uint8_t>(TableKind::kCombined)) ++oneTable;
    if (first.kind == static_cast<std::uint8_t>(TableKind::kTree)) ++twoTable;
    if (first.recordSize == kNodeRecordSize) ++oneTable;
    if (first.recordSize == kTreeRecordSize) ++twoTable;
  }
  if (oneTable > twoTable) return Layout::kOneTable;
  if (twoTable > oneTable) return Layout::kTwoTable;
  if (!byCount) return std::nullopt;
  return header.tableCount == 1 ? Layout::kOneTable : Layout::kTwoTable;
}

}  // namespace

std::optional<InventoryView> InventoryView::open(std::span<const std::uint8_t> bytes,
                                                 std::string& reason) {
  if (bytes.empty()) {
    reason = "the file is empty";
    return std::nullopt;
  }
  if (bytes.size() < kFileHeaderSize) {
    reason = "not an inventory: " + std::to_string(bytes.size()) +
             (bytes.size() == 1 ? " byte is" : " bytes are") + " less than the file header of " +
             std::to_string(kFileHeaderSize);
    return std::nullopt;
  }
  const FileHeaderFields header = readHeader(bytes.data());
  const std::optional<Layout> layout = layoutOf(bytes, header);
  if (wrongFields(header) > 1 || !layout) {
    reason = "not an inventory: it does not begin with an inventory's file header";
    return std::nullopt;
  }
  return InventoryView(bytes, *layout);
}

InventoryView::InventoryView(std::span<const std::uint8_t> bytes, Layout layout)
    : bytes_(bytes),
      layout_(layout),
      linkStride_(recordSize(layout, 0)),
      itemStride_(recordSize(layout, tableCount() - 1)) {
  locateTables();
  // Tables without records may be said to lie anywhere.
  const auto at = [this](std::uint64_t offset) {
    return bytes_.data() + std::min<std::uint64_t>(offset, bytes_.size());
  };
  linkBase_ = at(recordOffset(0));
  itemBase_ = at(itemOffset(0));
}

InventoryView::Table InventoryView::clip(std::uint64_t offset, std::uint32_t count,
                                         std::size_t recordSize, std::uint64_t limit) {
  const std::uint64_t room = offset < limit ? (limit - offset) / recordSize : 0;
  // The two highest values are kept free for marks, which no real file comes near.
  const std::uint64_t most = std::min<std::uint64_t>(room, kNoRecord - 2);
  return {offset, static_cast<std::uint32_t>(std::min<std::uint64_t>(count, most)), count};
}

// The count that `tree` states, unless the offset of the data table and the file's length prove it
// wrong: both would have to be damaged, and alike, to agree with each other by mistake.
std::uint32_t InventoryView::treeRecordCount(const DescriptorFields& tree,
                                             const DescriptorFields& data) const {
  const std::uint64_t dataLength = std::uint64_t{data.count} * kDataRecordSize;
  const std::uint64_t treeLength = std::uint64_t{tree.count} * kTreeRecordSize;
  if (data.offset <= prefixSize() || data.offset + dataLength != bytes_.size()) return tree.count;
  const std::uint64_t room = data.offset - prefixSize();
  // A tree table that was moved and ends at the data table has the count that it states.
  if (room % kTreeRecordSize != 0 || tree.offset + treeLength == data.offset) return tree.count;
  return static_cast<std::uint32_t>(room / kTreeRecordSize);
}

void InventoryView::locateTables() {
  const std::uint64_t size = bytes_.size();
  const std::uint64_t prefix = prefixSize();
  const std::optional<DescriptorFields> first = descriptor(0);
  tables_[0].offset = prefix;
  tables_[1].offset = prefix;
  if (!first) return;
  tables_[0].stated = first->count;

  if (layout_ == Layout::kOneTable) {
    const std::uint64_t length = std::uint64_t{first->count} * kNodeRecordSize;
    const bool statedFits = first->offset >= prefix && first->offset + length <= size;
    const std::uint64_t offset = statedFits ? first->offset : prefix;
    tables_[0] = clip(offset, first->count, kNodeRecordSize, size);
    return;
  }

  const std::optional<DescriptorFields> second = descriptor(1);
  if (!second) return;
  const std::uint32_t treeCount = treeRecordCount(*first, *second);
  const std::uint64_t treeLength = std::uint64_t{treeCount} * kTreeRecordSize;
  const std::uint64_t dataLength = std::uint64_t{second->count} * kDataRecordSize;

  // The data table. Its stated offset is 32 bits wide, so in a file beyond 4 GiB it is the low half
  // of the true one.
  const std::uint64_t expected = prefix + treeLength;
  std::uint64_t dataOffset = second->offset;
  if (second->offset == static_cast<std::uint32_t>(expected) || expected + dataLength == size ||
      second->offset < prefix || second->offset > size) {
    dataOffset = expected;
  }
  tables_[1] = clip(dataOffset, second->count, kDataRecordSize, size);

  // The tree table lies before it, unless the file states otherwise and that fits.
  const bool fixedFits = expected == dataOffset;
  const bool statedFits = first->offset >= prefix && first->offset + treeLength <= size;
  const std::uint64_t treeOffset = !fixedFits && statedFits ? first->offset : prefix;
  const std::uint64_t limit = treeOffset < dataOffset ? std::min(dataOffset, size) : size;
  tables_[0] = clip(treeOffset, treeCount, kTreeRecordSize, limit);
}

FileHeaderFields InventoryView::header() const {
  return readHeader(bytes_.data());
}

std::optional<DescriptorFields> InventoryView::descriptor(std::size_t table) const {
  const std::size_t at = kFileHeaderSize + table * kTableDescriptorSize;
  if (table >= tableCount() || bytes_.size() < at + kTableDescriptorSize) return std::nullopt;
  return readDescriptor(bytes_.data() + at);
}

std::uint64_t InventoryView::itemOffset(std::uint32_t dataIndex) const {
  const std::uint64_t links = layout_ == Layout::kOneTable ? kNodeRecordSize - kDataRecordSize : 0;
  return tables_[tableCount() - 1].offset + links + std::uint64_t{dataIndex} * itemStride_;
}

bool InventoryView::isPlaylistsMenu(std::uint32_t record) const {
  constexpr std::uint8_t kPlainMenu = 7;
  return mayBePlaylistsMenu(record) && itemOf(record).recType() == kPlainMenu;
}

bool InventoryView::mayBePlaylistsMenu(std::uint32_t record) const {
  return itemOf(record).name() == "Playlists";
}

}  // namespace Orvane
