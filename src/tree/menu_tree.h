#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/menu_node.h"

namespace Orvane {

class NodeArena;

// The owner of a whole menu tree. The root exists as long as the tree does.
class MenuTree {
 public:
  // The root is a plain menu named "root" with mediaId, rating and attribMask 0.
  MenuTree();
  MenuTree(const MenuTree&) = delete;
  MenuTree& operator=(const MenuTree&) = delete;
  ~MenuTree();

  MenuNode* getRoot() { return root_; }
  const MenuNode* getRoot() const { return root_; }

  // The root in the form in which children stand in their places.
  Child root() const { return Child(root_); }

  // Appends `child` to the children of `parent` (of the root), which owns it from then on. False
  // when an argument is nullptr: the tree is unchanged, and a child without a parent is freed, as
  // it is when memory runs out, which throws.
  static bool addChild(MenuNode* parent, std::unique_ptr<MenuNode> child);
  bool addChildToRoot(std::unique_ptr<MenuNode> child);

  // Appends a fresh menu to the root whose subtree may be built while other threads build elsewhere
  // in the tree: it has its memory to itself, but for twins of menus elsewhere, which have to be
  // built by the same thread. The tree's track table has to be set before.
  MenuNode& appendApart();

  // About how many nodes the tree has: those that it made itself. Leaves that are numbers of tracks
  // aren't counted.
  std::size_t nodeCountHint() const;

  // Lets the children of this tree's nodes be numbers of tracks in that table, which must outlive
  // the tree, as must all tracks in it, and in which no number may come to mean another track. The
  // first table counts.
  void setTrackTable(const TrackTable& tracks);
  const TrackTable* getTrackTable() const { return root_->getTrackTable(); }

  // Keeps numbers for MenuNode::appendLeaves as long as the tree lives, where they are. Several
  // threads may ask at once.
  std::span<std::uint32_t> keepNumbers(LargeVector<std::uint32_t> numbers);

  // Puts the children of album, artist and genre menus (recType 3 to 5) and of menus named
  // "Artists", "Albums", "Geners" or "Songs" in the order of their names as unsigned bytes,
  // everywhere beneath `node`; the node's own children keep their order. Among equal names the
  // order is the one that std::sort by name makes of the order before. nullptr is ignored.
  static void sortTree(MenuNode* node);

  // Prints the children of `node`, then of each menu beneath it, to standard output. nullptr is
  // ignored.
  static void dumpTree(const MenuNode* node);

  // The first node beneath `node` with the name, recType and mediaId of `target`, or nullptr: all
  // children of a node are tried before any grandchild. Prints every name that it tries to standard
  // output.
  static MenuNode* findNodeTrace(MenuNode* node, const MenuNode& target);

 private:
  std::unique_ptr<NodeArena> arena_;
  std::vector<std::unique_ptr<NodeArena>> arenasApart_;  // of subtrees
  MenuNode* root_;
  std::mutex keeping_;
  std::vector<LargeVector<std::uint32_t>> keptNumbers_;
};

}  // namespace Orvane
