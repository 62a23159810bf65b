#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "reader/inventory_check.h"
#include "reader/inventory_view.h"
#include "reader/tree_walk.h"

namespace Orvane {

// Counts over the records of an inventory that its menus lead to.
struct InventoryStats {
  struct Menu {
    std::uint32_t record;
    std::uint32_t children;  // as stated by the record
  };

  static constexpr std::size_t kKinds = 9;
  static constexpr std::size_t kWidest = 5;
  static constexpr std::size_t kFanOutSteps = 33;
  static constexpr std::size_t kNameSteps = 65;
  // The length to which a longer name is cut, in bytes.
  static constexpr std::size_t kCutName = 62;

  static std::string_view kindName(std::size_t kind);

  std::array<std::uint64_t, kKinds> byKind{};  // in the order of kindName()
  std::uint64_t reached = 0;                   // records in all
  std::uint64_t leaves = 0;
  std::uint64_t displaced = 0;        // menus whose contents are not stored
  std::uint64_t leavesWithCount = 0;  // media leaves with a child count
  std::uint32_t depth = 0;            // of the deepest record; the root's is 0
  std::uint32_t deepest = kNoRecord;
  // Menus by number of children: [0] none, [1] one, [2] 2 to 3, [3] 4 to 7 and so on.
  std::array<std::uint64_t, kFanOutSteps> byFanOut{};
  std::uint64_t childrenInMenus = 0;
  std::vector<Menu> widest;  // at most kWidest, widest first, the first in the menu among equals
  // Items by length of their name in bytes.
  std::array<std::uint64_t, kNameSteps> byNameLength{};
};

// Walks the inventory from the root with `walk` (fresh) and passes what it sees on to `check` as
// well, whose framing() it leaves to the caller.
InventoryStats collectStats(const InventoryView& view, TreeWalk& walk, InventoryCheck& check);

}  // namespace Orvane
