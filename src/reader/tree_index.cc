#include "reader/tree_index.h"

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
  // A media leaf's mark lies beyond every table.
  const std::uint32_t first = view_.links(record).firstChildIndex;
  std::uint32_t end = first;
  while (end < parents_.size() && parents_[end] == record) ++end;
  return {first, end - first};
}

bool TreeIndex::isDisplaced(std::uint32_t record) const {
  if (view_.layout() != Layout::kTwoTable || view_.links(record).firstChildIndex != 0 ||
      !view_.mayBePlaylistsMenu(record)) {
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
