#include "reader/tree_index.h"

#include <algorithm>

namespace Orvane {

TreeIndex::TreeIndex(const InventoryView& view) : view_(view) {
  TreeWalk walk(view);
  std::uint32_t visited = 0;
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event != TreeWalk::Event::kEnter) continue;
    ++visited;
    const TreeWalk::Visit& visit = walk.current();
    if (visit.outOfRange || visit.conflict != TreeWalk::Conflict::kNone ||
        visit.links.dataIndex >= view.dataCount()) {
      damaged_ = true;
    }
  }
  if (visited == 0 || visited != view.recordCount()) damaged_ = true;
  parents_ = walk.takeParents();
}

TreeIndex::Family TreeIndex::children(std::uint32_t record) const {
  const RecordLinks links = view_.links(record);
  if (links.isLeaf()) return {};
  const std::uint64_t end = std::min<std::uint64_t>(
      std::uint64_t{links.firstChildIndex} + links.childCount, parents_.size());
  Family family{links.firstChildIndex, 0};
  for (std::uint64_t i = links.firstChildIndex; i < end; ++i) {
    if (parents_[i] != record) break;
    ++family.count;
  }
  return family;
}

bool TreeIndex::isDisplaced(std::uint32_t record) const {
  if (view_.layout() != Layout::kTwoTable || record == 0 ||
      view_.links(record).firstChildIndex != 0 || !view_.mayBePlaylistsMenu(record)) {
    return false;
  }
  // Looks no further than the next such sibling, so that a family costs one pass.
  for (std::size_t i = std::size_t{record} + 1;
       i < parents_.size() && parents_[i] == parents_[record]; ++i) {
    if (view_.mayBePlaylistsMenu(static_cast<std::uint32_t>(i))) return true;
  }
  return false;
}

}  // namespace Orvane
