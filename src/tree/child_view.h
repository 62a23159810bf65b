#pragma once

#include "tree/child.h"
#include "tree/menu_node.h"
#include "tree/prefetch.h"
#include "tree/track.h"

namespace Orvane {

// Shows what stands in a place of a tree's children as a node, without making one in the tree.
class ChildView {
 public:
  // `tracks` is the table of that tree, or nullptr when it has none.
  explicit ChildView(const TrackTable* tracks) : tracks_(tracks) {}

  // Asks, in two steps, for what id and name of a child are read from.
  void expect(Child child, int step) {
    if (step == 0 && child.isNode()) {
      prefetch(child.node());
    } else if (step == 0) {
      prefetch(tracks_->data() + child.trackNumber());
    } else {
      (*this)(child).prefetchContent();
    }
  }

  // Good until the next call.
  const MenuNode& operator()(Child child) {
    if (child.isNode()) return *child.node();
    leaf_.becomeLeafOf(*(*tracks_)[child.trackNumber()]);
    return leaf_;
  }

 private:
  const TrackTable* tracks_;
  MenuNode leaf_;
};

}  // namespace Orvane
