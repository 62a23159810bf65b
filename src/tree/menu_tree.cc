#include "tree/menu_tree.h"

#include <algorithm>
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
  return arena_->nodeCount();
}

bool MenuTree::acceptTokensOf(const void* issuer, std::uint32_t highest) {
  if (tokenIssuer_ == nullptr) tokenIssuer_ = issuer;
  if (tokenIssuer_ != issuer) return false;
  highestToken_ = std::max(highestToken_, highest);
  return true;
}

bool MenuTree::addChildToRoot(std::unique_ptr<MenuNode> child) {
  return addChild(getRoot(), std::move(child));
}

}  // namespace Orvane
