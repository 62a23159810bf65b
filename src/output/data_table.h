#pragma once

#include <cstddef>
#include <cstdint>

#include "output/linked_table.h"
#include "tree/child.h"
#include "tree/huge_pages.h"

namespace Orvane {

// What a data record is filled from. The 72 bytes come into being only as they are written.
struct DataSource {
  Child child = Child(nullptr);  // not owned

  using Leaf = Child;
  static DataSource ofLeaf(Child leaf) { return {leaf}; }
};

// The data table, in record order: children that were added one by one, which can be found again,
// and runs of tracks, which can't.
class DataTable : private LinkedTable<DataSource> {
 public:
  using LinkedTable::appendLeaves;
  using LinkedTable::kLeastRun;
  using LinkedTable::Run;
  using LinkedTable::runs;
  using LinkedTable::size;

  // For a LinkedTableReader.
  const LinkedTable<DataSource>& records() const { return *this; }

  // Makes room for so many children.
  void reserve(std::size_t children) { LinkedTable::reserve(children, 0); }

  // Adds a child's record. Children are numbered from 0 on, by themselves.
  void add(Child child) {
    if (!runs().empty()) places_.push_back(size());
    appendLeaf(child);
  }

  std::uint32_t childCount() const { return leafCount(); }
  Child childAt(std::uint32_t number) const { return leafAt(number); }

  // The place in the table of the record of a child.
  std::uint32_t recordOf(std::uint32_t number) const {
    const std::size_t beforeRuns = leafCount() - places_.size();
    return number < beforeRuns ? number : places_[number - beforeRuns];
  }

 private:
  LargeVector<std::uint32_t> places_;  // of children behind the first run
};

}  // namespace Orvane
