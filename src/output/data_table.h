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

// The data table, in record order. All records are appended as leaves, those of menus, too.
using DataTable = LinkedTable<DataSource>;

}  // namespace Orvane
