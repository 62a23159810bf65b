#include "output/one_table_layout.h"

#include <cstddef>
#include <vector>

#include "output/data_record.h"
#include "output/family_walk.h"
#include "output/little_endian.h"
#include "output/walked_ahead.h"
#include "tree/huge_pages.h"

namespace Orvane {

namespace {

class OneTable {
 public:
  explicit OneTable(NodeTable& table) : table_(table) {}

  void append(const LayoutStep& step) {
    const Child child(step.node);
    if (step.isLinked) {
      links_.resize(step.place + std::size_t{1});
      links_.back() = table_.append({child});
    } else {
      table_.appendLeaf(child);
    }
  }

  void appendLeaves(std::span<const std::uint32_t> tracks) {
    if (tracks.size() >= NodeTable::kLeastRun) {
      table_.appendLeaves(tracks);
    } else {
      for (const std::uint32_t track : tracks) table_.appendLeaf(Child::ofTrack(track));
    }
  }

  void setFirstChild(std::uint32_t place, std::uint32_t index) {
    table_.setFirstChild(links_[place], index);
  }

 private:
  NodeTable& table_;
  LargeVector<NodeTable::Link> links_;  // by place
};

}  // namespace

std::uint32_t layoutNodeChildren(const MenuNode* node, NodeTable& table) {
  if (node == nullptr || node->getNodeType() == NODE_TYPE_MEDIA) return kNoChildren;
  const std::uint32_t first = table.size();
  FamilyWalk walk(*node, first,
                  {.isDeferred = [](const MenuNode&) { return false; },
                   .hashOf = [](const MenuNode&) { return std::uint32_t{0}; }});
  OneTable oneTable(table);
  forEachWalkedAhead(walk, [&](const std::vector<LayoutStep>& steps) {
    for (const LayoutStep& step : steps) takeStep(step, oneTable);
  });
  return first;
}

void fillNodeRecord(const MenuNode& node, std::span<std::uint8_t, kNodeRecordSize> record) {
  constexpr std::size_t kContentsOffset = kNodeRecordSize - kDataRecordSize;
  fillDataRecord(node, record.subspan<kContentsOffset, kDataRecordSize>());
  storeU32(&record[4], static_cast<std::uint32_t>(node.childCount()));
}

}  // namespace Orvane
