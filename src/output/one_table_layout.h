#pragma once

#include <cstdint>
#include <span>

#include "output/inventory_format.h"
#include "output/linked_table.h"
#include "tree/child.h"
#include "tree/menu_node.h"

namespace Orvane {

// What the layout knows of a record of the combined table: the child that it is filled from (not
// owned) and its link. The 80 bytes come into being only as they are written.
struct NodeRecord {
  Child child = Child(nullptr);
  // In the combined table; stays as it is for a media leaf.
  std::uint32_t firstChildIndex = kNoChildren;

  using Leaf = Child;
  static NodeRecord ofLeaf(Child leaf) { return {leaf}; }
};

using NodeTable = LinkedTable<NodeRecord>;

// Lays out the descendants of `node` behind what the table holds, in the plain order of the tree,
// and returns the index of its first child record (kNoChildren for nullptr and for a media leaf).
// Every node has a record to itself.
std::uint32_t layoutNodeChildren(const MenuNode* node, NodeTable& table);

// Fills all of a node record but firstChildIndex, its first 4 bytes:
//   4  childCount  4 bytes
//   8  contents   72 bytes, as in a data record
void fillNodeRecord(const MenuNode& node, std::span<std::uint8_t, kNodeRecordSize> record);

}  // namespace Orvane
