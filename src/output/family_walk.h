#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/menu_node.h"

namespace Orvane {

// What comes next in a layout.
struct LayoutStep {
  enum class Kind : std::uint8_t {
    kNode,        // a record for `node`, linked to kNoChildren
    kLeaves,      // those of the leaves of `tracks`, which are tracks' numbers
    kFirstChild,  // the record of the node that was given `place` last is linked to `firstChild`
  };

  Kind kind;
  bool isLinked = false;         // kNode: a kFirstChild may come for it
  std::uint32_t place = 0;       // of such a node, among those whose children are still to come
  MenuNode* node = nullptr;      // kNode
  std::uint32_t childCount = 0;  // its
  std::uint32_t hash = 0;        // its
  std::span<const std::uint32_t> tracks = {};  // kLeaves
  std::uint32_t firstChild = 0;                // kFirstChild
};

// The order in which both layouts put a tree into records: the children of a node stand together,
// followed by all descendants of its first child, then those of its second, and so on. The children
// of media leaves are never laid out.
//
// The descendants of a deferred child come after those of all its siblings. Among several deferred
// siblings only the last is descended into; the others are linked to 0.
//
// Works with a stack of its own: menus may be nested as deep as memory allows. The tree must stay
// as it is. After an exception the walk is of no use any more.
class FamilyWalk {
 public:
  struct Rules {
    bool (*isDeferred)(const MenuNode& child);
    std::uint32_t (*hashOf)(const MenuNode& child);  // for LayoutStep::hash
  };

  // Through the descendants of `node`, which is no media leaf. Their records begin with number
  // `size`.
  FamilyWalk(const MenuNode& node, std::uint32_t size, Rules rules);

  static constexpr std::size_t kMostSteps = 512;

  // Replaces `steps` by the next kMostSteps, at the end by fewer. False if there are none.
  bool take(std::vector<LayoutStep>& steps);

 private:
  // A node's children whose own children are still to come, as places in `toVisit_`.
  struct Family {
    std::size_t next;
    std::size_t end;
    std::size_t deferred;  // to be visited last, or kNone
  };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  void takeChildren(std::vector<LayoutStep>& steps);
  void takeChild(MenuNode& child, std::vector<LayoutStep>& steps);
  bool visitNext(std::vector<LayoutStep>& steps);
  void expectNewest() const;
  void expectFamilies(std::size_t visited, std::size_t end) const;

  Rules rules_;
  std::uint32_t size_;  // records so far
  std::vector<Family> unfinished_;
  LargeVector<MenuNode*> toVisit_;
  // Whose children are being given, nullptr for nobody's.
  const MenuNode* parent_ = nullptr;
  std::size_t nextChild_ = 0;
  std::size_t firstToVisit_ = 0;  // of those children
};

}  // namespace Orvane
