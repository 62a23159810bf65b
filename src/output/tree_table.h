#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "output/tree_record.h"
#include "tree/huge_pages.h"
#include "tree/menu_node.h"

namespace Orvane {

// The tree table, in record order. Most records are those of media leaves and link to nothing: of
// these only the data index is kept.
class TreeTable {
 public:
  // Where a record is to be linked to its children. Good for the table that gave it.
  using Link = std::uint32_t;

  std::uint32_t size() const { return static_cast<std::uint32_t>(dataIndexes_.size()); }
  void reserve(std::size_t records) { dataIndexes_.reserve(records); }

  // Appends the record of a media leaf without children.
  void appendLeaf(std::uint32_t dataIndex) { dataIndexes_.push_back(dataIndex); }

  // Appends a record for `node`, as yet without children to walk to.
  Link append(const MenuNode& node, std::uint32_t dataIndex) {
    Linked linked{size(), {kNoChildren, 0, dataIndex}};
    fillTreeRecord(node, linked.record);
    linked_.push_back(linked);
    dataIndexes_.push_back(dataIndex);
    return static_cast<Link>(linked_.size() - 1);
  }

  void setFirstChild(Link link, std::uint32_t index) {
    linked_[link].record.firstChildIndex = index;
  }

  // Calls `use` with each record in order.
  template <typename Use>
  void forEach(Use use) const {
    auto linked = linked_.begin();
    for (std::uint32_t i = 0; i < size(); ++i) {
      if (linked != linked_.end() && linked->position == i) {
        use(linked->record);
        ++linked;
      } else {
        use(TreeRecord{kNoChildren, 0, dataIndexes_[i]});
      }
    }
  }

 private:
  struct Linked {
    std::uint32_t position;  // of the record in the table
    TreeRecord record;
  };

  template <typename T>
  using Sequence = std::vector<T, LargeAllocator<T>>;

  Sequence<std::uint32_t> dataIndexes_;  // of all records
  Sequence<Linked> linked_;              // by position
};

}  // namespace Orvane
