#pragma once

#include <string>

#include "reader/inventory_view.h"
#include "tree/menu_tree.h"

namespace Orvane::fuzz {

// Compares what a player finds in a file, following links from the root on, with the tree that the
// file was written from, and returns the first difference, or an empty text. Each record must be
// one node's; families must stand together, one after another in the writer's order; each node must
// show its own contents or, in two tables, those of the first node of the same id and name.
std::string differenceOf(const MenuTree& tree, const InventoryView& view);

}  // namespace Orvane::fuzz
