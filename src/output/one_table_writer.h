#pragma once

#include "io/buffer.h"
#include "tree/menu_tree.h"

namespace Orvane {

// Writes the tree in the one-table layout: a node's links and contents in one record, nothing
// shared. Calls on the buffer, result and errors as with writeTwoTable.
bool writeOneTable(const MenuTree& tree, Buffer& buffer);

}  // namespace Orvane
