#pragma once

#include <cstdint>
#include <vector>

#include "output/tree_table.h"
#include "tree/huge_pages.h"
#include "tree/menu_node.h"
#include "tree/position_index.h"

namespace Orvane {

// The data table, in record order: for each record the node that it is filled from. Not owned; the
// records themselves, 72 bytes each, come into being only as they are written.
using DataTable = std::vector<const MenuNode*, LargeAllocator<const MenuNode*>>;

// Data records by what they are shared by. The root's record is never entered, so nothing shares
// it.
struct DataRecordIndex {
  // Makes room for tokens up to `highestToken`.
  void reserve(std::uint32_t highestToken) {
    byNameAndId.reserve(highestToken);
    byToken.resize(highestToken + std::size_t{1});
  }

  PositionIndex byNameAndId;
  std::vector<std::uint32_t, LargeAllocator<std::uint32_t>> byToken;  // 0 where none is known
};

// Lays out the descendants of `node` behind what the tables hold and returns the tree index of its
// first child record (kNoChildren for nullptr and for a media leaf).
//
// Nodes with equal mediaId and equal name share the data record of the first of them, whatever else
// differs. Names are equal when their stored 64 bytes are, up to the first zero byte.
//
// The subtree of a child named "Playlists" with recType 7 comes after its siblings' subtrees; if
// one parent has several, only the last one's subtree is laid out.
std::uint32_t layoutChildren(const MenuNode* node, TreeTable& treeTable, DataTable& dataTable,
                             DataRecordIndex& idMap);

}  // namespace Orvane
