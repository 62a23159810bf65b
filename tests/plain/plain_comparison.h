// Compares the program's own objects with their plain counterparts.
#pragma once

#include <string>

#include "inventory/track_manager.h"
#include "plain/plain_inventory.h"
#include "plain/plain_menu.h"
#include "tree/menu_node.h"

namespace Orvane::plain {

// Each returns "" when the two are the same in every field and order, and else says where they
// differ first.
std::string differenceOf(const MenuNode& node, const PlainNode& plain);
std::string differenceOf(const TrackManager& manager, const PlainInventory& plain);

}  // namespace Orvane::plain
