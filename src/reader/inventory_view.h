// A read-only look at the bytes of an inventory file, the same for both layouts.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "output/inventory_format.h"
#include "reader/item_view.h"
#include "reader/little_endian.h"
#include "tree/prefetch.h"

namespace Orvane {

// "No record": never a valid index, because no table holds that many records.
inline constexpr std::uint32_t kNoRecord = 0xFFFFFFFF;

enum class Layout : std::uint8_t {
  kOneTable = 1,  // one table of 80-byte node records
  kTwoTable = 2,  // 12-byte tree records, then 72-byte data records that equal items share
};

// The fields of the 16-byte file header, as stored.
struct FileHeaderFields {
  std::uint8_t zero;
  std::uint8_t version;
  std::uint16_t reserved16;
  std::uint32_t reserved32;
  std::uint32_t tableCount;
  std::uint32_t headerSize;
};

// The fields of one 16-byte table descriptor, as stored.
struct DescriptorFields {
  std::uint8_t kind;
  std::uint8_t version;
  std::uint16_t reserved;
  std::uint32_t offset;
  std::uint32_t count;
  std::uint32_t recordSize;
};

// The part of a record that ties it to others. `dataIndex` is the record's own index in the
// one-table layout, where a record carries its item itself.
struct RecordLinks {
  std::uint32_t firstChildIndex;
  std::uint32_t childCount;
  std::uint32_t dataIndex;

  // A media leaf may state a child count; none of those children is stored.
  bool isLeaf() const { return firstChildIndex == kNoChildren; }
};

// Zero-copy and bounds-checked: it borrows the bytes (which must stay put and unchanged as long as
// the view or anything obtained from it is in use), allocates nothing, and answers every index.
// Counts and offsets of the file are used only as far as the bytes bear them out: recordCount() and
// dataCount() are what can be read, the descriptors are what the file claims. A copy is cheap.
class InventoryView {
 public:
  // Takes `bytes` for an inventory if its header is one, give or take one damaged field. Otherwise
  // returns nothing and puts the reason into `reason`, as the end of a sentence without full stop.
  // A truncated inventory of at least 16 bytes is an inventory.
  static std::optional<InventoryView> open(std::span<const std::uint8_t> bytes,
                                           std::string& reason);

  Layout layout() const { return layout_; }
  std::span<const std::uint8_t> bytes() const { return bytes_; }
  FileHeaderFields header() const;

  // 1 or 2, by the layout.
  std::size_t tableCount() const { return layout_ == Layout::kTwoTable ? 2 : 1; }
  // The descriptor of table `table`; nothing if the file ends before it does.
  std::optional<DescriptorFields> descriptor(std::size_t table) const;
  // How many records table `table` has by its descriptor; 0 if the file ends before that. For the
  // tree table of two it is the number for which the data table's offset and the file's length
  // speak, where they agree on another one.
  std::uint32_t statedCount(std::size_t table) const { return tables_[table].stated; }
  // Where table `table` is read from, in bytes from the start of the file. That is the stated
  // offset unless only the place that the layout gives it fits the counts and the file's size.
  std::uint64_t tableOffset(std::size_t table) const { return tables_[table].offset; }
  // How many records of table `table` can be read, and the size of each in bytes.
  std::uint32_t readableCount(std::size_t table) const { return tables_[table].count; }
  static constexpr std::size_t recordSize(Layout layout, std::size_t table) {
    if (layout == Layout::kOneTable) return kNodeRecordSize;
    return table == 0 ? kTreeRecordSize : kDataRecordSize;
  }
  // Size of header and descriptors in this layout, in bytes.
  std::size_t prefixSize() const { return kFileHeaderSize + tableCount() * kTableDescriptorSize; }

  // Number of readable tree or node records, and of readable items.
  std::uint32_t recordCount() const { return tables_[0].count; }
  std::uint32_t dataCount() const { return tables_[tableCount() - 1].count; }

  // The links of `record`; those of a childless menu without an item if there is no such record.
  RecordLinks links(std::uint32_t record) const {
    if (record >= tables_[0].count) return {0, 0, kNoRecord};
    const std::uint8_t* at = linkBase_ + std::size_t{record} * linkStride_;
    return {readLe32(at), readLe32(at + 4),
            layout_ == Layout::kTwoTable ? readLe32(at + 8) : record};
  }

  // The item of data record `dataIndex` (of node record `dataIndex` in the one-table layout); empty
  // if there is none.
  ItemView item(std::uint32_t dataIndex) const {
    if (dataIndex >= dataCount()) return {};
    return ItemView(itemBase_ + std::size_t{dataIndex} * itemStride_);
  }
  ItemView itemOf(std::uint32_t record) const { return item(links(record).dataIndex); }

  // Starts loading the item of `record`, if there is one, for a reader that will want it soon:
  // items are shared, so that records side by side have theirs all over the file.
  void prefetchItemOf(std::uint32_t record) const {
    const std::uint32_t dataIndex = links(record).dataIndex;
    if (dataIndex < dataCount()) prefetch(itemBase_ + dataIndex * itemStride_);
  }

  // File offsets of an existing record and of an existing item.
  std::uint64_t recordOffset(std::uint32_t record) const {
    return tables_[0].offset + std::uint64_t{record} * linkStride_;
  }
  std::uint64_t itemOffset(std::uint32_t dataIndex) const;

  // True for a plain menu that the two-table layout stores after its siblings' contents, and of
  // which it keeps only the last one's contents among siblings.
  bool isPlaylistsMenu(std::uint32_t record) const;

  // The same by the name alone: a record that shares its item with others shows the type that the
  // first of them brought, so that by its own type it may well be such a menu.
  bool mayBePlaylistsMenu(std::uint32_t record) const;

 private:
  struct Table {
    std::uint64_t offset = 0;
    std::uint32_t count = 0;   // of readable records
    std::uint32_t stated = 0;  // of records that the file should have
  };

  InventoryView(std::span<const std::uint8_t> bytes, Layout layout);
  void locateTables();
  std::uint32_t treeRecordCount(const DescriptorFields& tree, const DescriptorFields& data) const;
  static Table clip(std::uint64_t offset, std::uint32_t count, std::size_t recordSize,
                    std::uint64_t limit);

  std::span<const std::uint8_t> bytes_;
  Layout layout_;
  std::array<Table, 2> tables_{};
  const std::uint8_t* linkBase_ = nullptr;
  const std::uint8_t* itemBase_ = nullptr;
  std::size_t linkStride_;
  std::size_t itemStride_;
};

}  // namespace Orvane
