#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "tree/huge_pages.h"

namespace Orvane {

// A table of records with links, in record order. Most records are those of media leaves and link
// to nothing: of these only the rest is kept.
//
// A Record has a firstChildIndex, a type Leaf for what a leaf's record is made from, a static
// ofLeaf(Leaf) that makes it, and leaf(), which gives that of any record.
template <typename Record>
class LinkedTable {
 public:
  using Leaf = typename Record::Leaf;

  // Where a record is to be linked to its children. Good for the table that gave it.
  using Link = std::uint32_t;
  static constexpr Link kNeverLinked = 0xFFFFFFFF;

  std::uint32_t size() const { return static_cast<std::uint32_t>(leaves_.size()); }
  void reserve(std::size_t records) { leaves_.reserve(records); }

  // Appends the record of a media leaf without children.
  Link appendLeaf(Leaf leaf) {
    if (leaves_.size() >= kMostRecords) throw std::length_error("too many records for a file");
    leaves_.push_back(leaf);
    return kNeverLinked;
  }

  // Appends a record that is yet to be linked.
  Link append(const Record& record) {
    const std::uint32_t position = size();
    appendLeaf(record.leaf());
    linked_.push_back({position, record});
    return static_cast<Link>(linked_.size() - 1);
  }

  void setFirstChild(Link link, std::uint32_t index) {
    linked_[link].record.firstChildIndex = index;
  }

  // Forgets all records and frees their memory.
  void clear() {
    release(leaves_);
    release(linked_);
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
        use(Record::ofLeaf(leaves_[i]));
      }
    }
  }

 private:
  static constexpr std::size_t kMostRecords = 0xFFFFFFFF;  // whose indexes aren't kNoChildren

  struct Linked {
    std::uint32_t position;  // of the record in the table
    Record record;
  };

  LargeVector<Leaf> leaves_;    // of all records
  LargeVector<Linked> linked_;  // by position
};

}  // namespace Orvane
