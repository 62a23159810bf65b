#include "output/one_table_layout.h"

#include "output/data_record.h"
#include "output/family_layout.h"
#include "output/little_endian.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

class OneTable {
 public:
  explicit OneTable(NodeTable& table) : table_(table) {}

  using Link = NodeTable::Link;

  std::uint32_t size() const { return table_.size(); }
  Link append(MenuNode& child) {
    const Child place(&child);
    return child.getNodeType() == NODE_TYPE_MEDIA ? table_.appendLeaf(place)
                                                  : table_.append({place});
  }
  void appendLeaves(std::span<const std::uint32_t> tracks) {
    if (tracks.size() >= NodeTable::kLeastRun) {
      table_.appendLeaves(tracks);
    } else {
      for (const std::uint32_t track : tracks) table_.appendLeaf(Child::ofTrack(track));
    }
  }
  void setFirstChild(Link link, std::uint32_t index) { table_.setFirstChild(link, index); }
  static bool isDeferred(const MenuNode& /*child*/) { return false; }
  static void expect(const MenuNode& child, int step) {
    if (step == 0) prefetch(&child);
  }
  static void expectLeaves(std::span<const std::uint32_t> /*tracks*/) {}

 private:
  NodeTable& table_;
};

}  // namespace

std::uint32_t layoutNodeChildren(const MenuNode* node, NodeTable& table) {
  if (node == nullptr) return kNoChildren;
  OneTable oneTable(table);
  return layoutFamilies(*node, oneTable);
}

void fillNodeRecord(const MenuNode& node, std::span<std::uint8_t, kNodeRecordSize> record) {
  constexpr std::size_t kContentsOffset = kNodeRecordSize - kDataRecordSize;
  fillDataRecord(node, record.subspan<kContentsOffset, kDataRecordSize>());
  storeU32(&record[4], static_cast<std::uint32_t>(node.childCount()));
}

}  // namespace Orvane
