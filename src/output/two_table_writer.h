#pragma once

#include "io/buffer.h"
#include "tree/menu_tree.h"

namespace Orvane {

// Writes the tree in the two-table layout: links in a tree table, contents in a data table that
// equal nodes share. `buffer` is opened, written front to back, one call a record, and closed.
//
// Returns true. A failed write leaves as the buffer throws it (OVWriteError from a DiskBuffer); the
// output is then incomplete. That the buffer couldn't be opened shows at the first write.
bool writeTwoTable(const MenuTree& tree, Buffer& buffer);

}  // namespace Orvane
