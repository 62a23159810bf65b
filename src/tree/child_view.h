#pragma once

#include "tree/child.h"
#include "tree/menu_node.h"
#include "tree/prefetch.h"
#include "tree/track_table.h"

namespace Orvane {

// Shows what stands in a place of a tree's children as a node, without making one in the tree.
class ChildView {
 public:
  // `tracks` is the table of that tree, or nullptr when it has none.
  explicit ChildView(const TrackTable* tracks) : tracks_(tracks) {}

  // Asks, in two steps, for what id and name of a child are read from.
  void expect(Child child, int step) {
    if (step == 0) {
      prefetch(child.isNode() ? static_cast<const void*>(child.node()) : trackOf(child));
    } else if (child.isNode()) {
      child.node()->prefetchContent();
    } else {
      trackOf(child)->prefetchTitle();
    }
  }

  // Good until the next call.
  const MenuNode& operator()(Child child) {
    if (child.isNode()) return *child.node();
    leaf_.becomeLeafOf(*trackOf(child));
    return leaf_;
  }

 private:
  const Track* trackOf(Child child) const { return (*tracks_)[child.trackNumber()]; }

  const TrackTable* tracks_;
  MenuNode leaf_;
};

}  // namespace Orvane
