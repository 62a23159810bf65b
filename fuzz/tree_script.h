#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "byte_source.h"
#include "plain/plain_menu.h"
#include "tree/menu_tree.h"

namespace Orvane::fuzz {

// Carries out an input as a list of steps that grow a menu tree by every way that MenuNode offers,
// and a plain tree in the same way.
class TreeScript {
 public:
  explicit TreeScript(ByteSource input);

  const MenuTree& tree() const { return tree_; }
  const plain::PlainNode& plainTree() const { return *plain_; }

 private:
  // The plain rendering goes as deep as the tree does, and takes time with the square of its size.
  static constexpr std::size_t kMostNodes = 400;

  // The same node in both trees.
  struct Pair {
    MenuNode* node;
    plain::PlainNode* plain;
  };
  enum class Made { kByTree, kAlone };

  void step(std::uint32_t code);
  Pair append(Pair parent, Made made);
  void setAll(Pair pair);
  void setOne(Pair pair, std::uint32_t which);
  void setName(Pair pair, const std::string& name);
  void borrowName(Pair pair, const std::string& name);
  void becomeLeaf(Pair pair);
  void appendLeaves(Pair parent, std::uint32_t count);
  std::string name();

  bool isFull() const { return pairs_.size() >= kMostNodes; }
  Pair here() const { return open_.back(); }

  ByteSource input_;
  std::deque<std::string> borrowed_;           // outlives the tree, which refers to it
  std::deque<Track> tracks_;                   // so do these
  std::deque<plain::PlainTrack> plainTracks_;  // the same
  TrackTable trackTable_;
  std::deque<std::vector<std::uint32_t>> numbers_;  // what menus have as children
  MenuTree tree_;
  std::unique_ptr<plain::PlainNode> plain_ = plain::plainRoot();
  std::vector<Pair> open_;   // from the root to the menu that is being filled
  std::vector<Pair> pairs_;  // all nodes, in the order of their making
};

}  // namespace Orvane::fuzz
