#pragma once

#include <cstdint>

#include "output/data_record_index.h"
#include "output/data_table.h"
#include "output/tree_record.h"
#include "tree/menu_node.h"

namespace Orvane {

// Lays out the descendants of `node` behind what the tables hold and returns the tree index of its
// first child record (kNoChildren for nullptr and for a media leaf). The data table's first record,
// which nothing shares, must be there already where children are numbers of tracks. Both tables
// refer to these numbers, and to the nodes, until they have been read; the tree table of a tree
// with a track table can be read once `idMap`, which is for one data table only, has ended its
// search. After an exception they are of no use any more.
//
// Nodes with equal mediaId and equal name share the data record of the first of them, whatever else
// differs. Names are equal when their stored 64 bytes are, up to the first zero byte.
//
// The subtree of a child named "Playlists" with recType 7 comes after its siblings' subtrees; if
// one parent has several, only the last one's subtree is laid out.
std::uint32_t layoutChildren(const MenuNode* node, TreeTable& treeTable, DataTable& dataTable,
                             DataRecordIndex& idMap);

}  // namespace Orvane
