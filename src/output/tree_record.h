#pragma once

#include <array>
#include <cstdint>

#include "output/inventory_format.h"
#include "output/linked_table.h"
#include "output/little_endian.h"
#include "tree/menu_node.h"

namespace Orvane {

// A node's links: one record of the tree table. All three are counts of records.
struct TreeRecord {
  std::uint32_t firstChildIndex = kNoChildren;  // in the tree table; kNoChildren for a media leaf
  std::uint32_t childCount = 0;  // what the node holds, also where those aren't written
  std::uint32_t dataIndex = 0;   // in the data table

  using Leaf = std::uint32_t;  // a leaf's data index
  static TreeRecord ofLeaf(Leaf leaf) { return {.dataIndex = leaf}; }

  using Bytes = std::array<std::uint8_t, kTreeRecordSize>;

  Bytes encode() const {
    Bytes bytes;
    storeU32(&bytes[0], firstChildIndex);
    storeU32(&bytes[4], childCount);
    storeU32(&bytes[8], dataIndex);
    return bytes;
  }
};

// Sets childCount from the node; the indexes are the layout's.
inline void fillTreeRecord(const MenuNode& node, TreeRecord& record) {
  record.childCount = static_cast<std::uint32_t>(node.childCount());
}

using TreeTable = LinkedTable<TreeRecord>;

}  // namespace Orvane
