#pragma once

#include "output/linked_table.h"
#include "tree/child.h"

namespace Orvane {

// What a data record is filled from. The 72 bytes come into being only as they are written.
struct DataSource {
  Child child = Child(nullptr);  // not owned

  using Leaf = Child;
  static DataSource ofLeaf(Child leaf) { return {leaf}; }
};

// The data table, in record order. What others may come to share is kept whole, so that it can be
// reached by its link; all else is leaves.
using DataTable = LinkedTable<DataSource>;

}  // namespace Orvane
