#include "output/one_table_layout.h"

#include "output/data_record.h"
#include "output/family_layout.h"
#include "output/little_endian.h"

namespace Orvane {

namespace {

class OneTable {
 public:
  explicit OneTable(NodeTable& table) : table_(table) {}

  using Link = std::uint32_t;  // the record's index

  std::uint32_t size() const { return static_cast<std::uint32_t>(table_.size()); }
  Link append(const MenuNode& node) {
    table_.push_back({&node, kNoChildren});
    return size() - 1;
  }
  void setFirstChild(Link link, std::uint32_t index) { table_[link].firstChildIndex = index; }
  static bool isDeferred(const MenuNode& /*child*/) { return false; }
  static void expect(const MenuNode& /*node*/, int /*step*/) {}

 private:
  NodeTable& table_;
};

}  // namespace

std::uint32_t layoutNodeChildren(const MenuNode* node, NodeTable& table) {
  OneTable oneTable(table);
  return layoutFamilies(node, oneTable);
}

void fillNodeRecord(const MenuNode& node, std::span<std::uint8_t, kNodeRecordSize> record) {
  constexpr std::size_t kContentsOffset = kNodeRecordSize - kDataRecordSize;
  fillDataRecord(node, record.subspan<kContentsOffset, kDataRecordSize>());
  storeU32(&record[4], static_cast<std::uint32_t>(node.childCount()));
}

}  // namespace Orvane
