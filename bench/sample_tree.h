#pragma once

#include <cstdint>

#include "inventory/track_manager.h"
#include "tree/menu_tree.h"

namespace bench {

// The menu tree of a library, as the menu builder leaves it: not yet sorted.
struct SampleTree {
  explicit SampleTree(std::uint32_t tracks);

  Orvane::TrackManager manager;
  Orvane::MenuTree tree;  // refers to the manager's tracks
};

}  // namespace bench
