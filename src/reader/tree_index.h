#pragma once

#include <cstdint>
#include <vector>

#include "reader/inventory_view.h"
#include "reader/tree_walk.h"

namespace Orvane {

// The menu tree of an inventory after a complete walk, for those who need to go up and down in it.
// Every record has at most one parent here and the links form a tree, whatever the file says. Uses
// four bytes per record. Borrows the view's bytes.
class TreeIndex {
 public:
  explicit TreeIndex(const InventoryView& view);

  const InventoryView& view() const { return view_; }
  const std::vector<std::uint32_t>& parents() const { return parents_; }

  // True if some links of the file could not be followed or some records not be reached.
  bool damaged() const { return damaged_; }

  struct Family {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };
  // The children of an existing record that are stored and are its own.
  Family children(std::uint32_t record) const;

  // True for a "Playlists" record that a later sibling keeps from being linked to its children. The
  // file does not tell whether it is a menu or a media leaf, only how many children it has.
  bool isDisplaced(std::uint32_t record) const;

 private:
  const InventoryView view_;
  std::vector<std::uint32_t> parents_;
  bool damaged_ = false;
};

}  // namespace Orvane
