#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "tree/arena.h"
#include "tree/menu_node.h"

namespace Orvane {

// Holds the nodes of one tree with all that belongs to them, and frees them together without
// looking at any.
class NodeArena {
 public:
  // A fresh node. It, its name and its children belong to the arena.
  MenuNode* make();

  // How many nodes it has made.
  std::size_t nodeCount() const { return nodeCount_; }

  // Where numbers among the children are looked up: the first table that is set. Not owned.
  void setTrackTable(const TrackTable& tracks) {
    if (tracks_ == nullptr) tracks_ = &tracks;
  }
  const TrackTable* getTrackTable() const { return tracks_; }

  // Takes over a node from elsewhere with all that is beneath it.
  void adopt(std::unique_ptr<MenuNode> node) { adopted_.push_back(std::move(node)); }

 private:
  friend class MenuNode;

  char* makeText(std::size_t size) { return static_cast<char*>(memory_.allocate(size, 1)); }
  MenuNode::Branch* makeBranch();
  MenuNode::Rare* makeRare();

  // Arrays of a power of two of elements; those given back are used again.
  template <typename T>
  T* makeArray(std::uint32_t capacity) {
    return static_cast<T*>(makeArrayOfBytes(capacity * sizeof(T)));
  }
  template <typename T>
  void giveBack(T* array, std::uint32_t capacity) {
    giveBackArray(array, capacity * sizeof(T));
  }
  void* makeArrayOfBytes(std::size_t size);
  void giveBackArray(void* array, std::size_t size);

  Arena memory_;
  std::size_t nodeCount_ = 0;
  const TrackTable* tracks_ = nullptr;
  std::array<std::vector<void*>, 64> spareArrays_;         // by the size's power of two
  MenuNode::Branch plain_ = MenuNode::Branch(this, true);  // stands for that of a node without any
  std::vector<std::unique_ptr<MenuNode>> adopted_;
};

}  // namespace Orvane
