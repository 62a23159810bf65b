#include "tree/menu_tree.h"

#include <utility>

#include "tree/node_arena.h"

namespace Orvane {

MenuTree::MenuTree() : arena_(std::make_unique<NodeArena>()), root_(arena_->make()) {
  root_->setAll(NODE_TYPE_MENU, 0, "root", RecType::kPlainMenu, 0, 0);
}

MenuTree::~MenuTree() = default;

bool MenuTree::addChild(MenuNode* parent, std::unique_ptr<MenuNode> child) {
  return parent != nullptr && parent->addChild(std::move(child));
}

std::size_t MenuTree::nodeCountHint() const {
  std::size_t count = arena_->nodeCount();
  for (const auto& arena : arenasApart_) count += arena->nodeCount();
  return count;
}

MenuNode& MenuTree::appendApart() {
  NodeArena& arena = *arenasApart_.emplace_back(std::make_unique<NodeArena>());
  if (getTrackTable() != nullptr) arena.setTrackTable(*getTrackTable());
  return root_->appendChildOf(arena);
}

void MenuTree::setTrackTable(const TrackTable& tracks) {
  arena_->setTrackTable(tracks);
}

std::span<std::uint32_t> MenuTree::keepNumbers(LargeVector<std::uint32_t> numbers) {
  const std::lock_guard lock(keeping_);
  return keptNumbers_.emplace_back(std::move(numbers));
}

bool MenuTree::addChildToRoot(std::unique_ptr<MenuNode> child) {
  return addChild(getRoot(), std::move(child));
}

}  // namespace Orvane
