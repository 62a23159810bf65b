#include "tree/node_arena.h"

#include <bit>
#include <new>

#include "tree/huge_pages.h"

namespace Orvane {

MenuNode* NodeArena::make() {
  ++nodeCount_;
  return new (memory_.allocate(sizeof(MenuNode), alignof(MenuNode))) MenuNode(&plain_);
}

MenuNode::Branch* NodeArena::makeBranch() {
  void* const place = memory_.allocate(sizeof(MenuNode::Branch), alignof(MenuNode::Branch));
  return new (place) MenuNode::Branch(this);
}

MenuNode::Rare* NodeArena::makeRare() {
  return new (memory_.allocate(sizeof(MenuNode::Rare), alignof(MenuNode::Rare))) MenuNode::Rare();
}

void* NodeArena::makeArrayOfBytes(std::size_t size) {
  auto& spare = spareArrays_[static_cast<std::size_t>(std::countr_zero(size))];
  if (spare.empty()) return memory_.allocate(size, alignof(MenuNode*));
  void* const array = spare.back();
  spare.pop_back();
  return array;
}

void NodeArena::giveBackArray(void* array, std::size_t size) {
  // There is hardly another menu in the tree that could use a large one, but much elsewhere.
  if (size >= kHugePageSize && memory_.giveBack(array)) return;
  spareArrays_[static_cast<std::size_t>(std::countr_zero(size))].push_back(array);
}

}  // namespace Orvane
