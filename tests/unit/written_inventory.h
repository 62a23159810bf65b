#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reader/inventory_view.h"
#include "tree/menu_tree.h"

namespace Orvane {

// The file that the writers make of a tree.
std::vector<std::uint8_t> written(const MenuTree& tree, Layout layout);

// The file that the XML reader and the writers make of an XML menu tree, by way of a temporary
// file.
std::vector<std::uint8_t> compiled(const std::string& xml, Layout layout);

}  // namespace Orvane
