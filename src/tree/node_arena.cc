#include "tree/node_arena.h"

#include <bit>
#include <new>

#include "tree/huge_pages.h"

namespace Orvane {

NodeArena::NodeArena() {
  plain_.arena = this;
  plain_.isShared = true;
}

MenuNode* NodeArena::make() {
  ++nodeCount_;
  return new (memory_.allocate(sizeof(MenuNode), alignof(MenuNode))) MenuNode(&plain_);
}

MenuNode::Branch* NodeArena::makeBranch() {
  void* const place = memory_.allocate(sizeof(MenuNode::Branch), alignof(MenuNode::Branch));
  return new (place) MenuNode::Branch{.arena = this};
}

MenuNode::Rare* NodeArena::makeRare() {
  return new (memory_.allocate(sizeof(MenuNode::Rare), alignof(MenuNode::Rare))) MenuNode::Rare();
}

MenuNode** NodeArena::makeArray(std::uint32_t capacity) {
  auto& spare = spareArrays_[static_cast<std::size_t>(std::countr_zero(capacity))];
  if (!spare.empty()) {
    MenuNode** const array = spare.back();
    spare.pop_back();
    return array;
  }
  return static_cast<MenuNode**>(
      memory_.allocate(capacity * sizeof(MenuNode*), alignof(MenuNode*)));
}

void NodeArena::giveBack(MenuNode** array, std::uint32_t capacity) {
  // There is hardly another menu in the tree that could use a large one, but much elsewhere.
  if (capacity * sizeof(MenuNode*) >= kHugePageSize && memory_.giveBack(array)) return;
  spareArrays_[static_cast<std::size_t>(std::countr_zero(capacity))].push_back(array);
}

}  // namespace Orvane
