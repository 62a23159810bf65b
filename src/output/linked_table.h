#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>

#include "tree/huge_pages.h"

namespace Orvane {

template <typename Record>
class LinkedTableReader;

// A table of records with links, in record order. Most records are those of media leaves and link
// to nothing: of these only the rest is kept, and of leaves that are numbers of tracks nothing but
// where those numbers are. A LinkedTableReader gives the records back.
//
// A Record has a type Leaf for what a leaf's record is made from, a static ofLeaf(Leaf) that makes
// it, and, where setFirstChild() is used, a firstChildIndex.
template <typename Record>
class LinkedTable {
 public:
  using Leaf = typename Record::Leaf;

  // Where a record is to be linked to its children. Good for the table that gave it.
  using Link = std::uint32_t;
  static constexpr Link kNeverLinked = 0xFFFFFFFF;

  std::uint32_t size() const { return size_; }

  // Makes room for so many leaves that are appended one by one, and so many other records.
  void reserve(std::size_t leaves, std::size_t others) {
    leaves_.reserve(leaves);
    linked_.reserve(others);
  }

  // Appends the record of a media leaf without children.
  Link appendLeaf(Leaf leaf) {
    const std::uint32_t sizeAfter = sizeWith(1);
    leaves_.push_back(leaf);
    size_ = sizeAfter;
    return kNeverLinked;
  }

  // Appends those of tracks' leaves. The numbers stay where they are, and must until the records
  // have been read. Fewer than kLeastRun take less when they are appended one by one.
  static constexpr std::size_t kLeastRun = 4;
  void appendLeaves(std::span<const std::uint32_t> tracks) { appendRun(tracks, kNotCounted); }

  // The same where the leaves are known to count up, from `first` on.
  void appendLeaves(std::span<const std::uint32_t> tracks,
                    std::uint32_t first) requires std::integral<Leaf> {
    appendRun(tracks, first);
  }

  // Appends a record that is yet to be linked.
  Link append(const Record& record) {
    const std::uint32_t sizeAfter = sizeWith(1);
    linked_.push_back({size_, record});
    size_ = sizeAfter;
    return static_cast<Link>(linked_.size() - 1);
  }

  void setFirstChild(Link link, std::uint32_t index) {
    linked_[link].record.firstChildIndex = index;
  }

  // Leaves whose tracks' numbers stand one after the other.
  struct Run {
    const std::uint32_t* tracks;
    std::uint32_t begin;  // of their records in the table
    std::uint32_t end;
    std::uint32_t first;  // the first leaf, if they count up, or kNotCounted
  };
  static constexpr std::uint32_t kNotCounted = 0xFFFFFFFF;

  // Those that were appended by appendLeaves(), in order.
  std::span<const Run> runs() const { return runs_; }

  // Forgets all records and frees their memory.
  void clear() {
    release(leaves_);
    release(runs_);
    release(linked_);
    size_ = 0;
  }

 private:
  friend class LinkedTableReader<Record>;

  static constexpr std::size_t kMostRecords = 0xFFFFFFFF;  // whose indexes aren't kNoChildren

  struct Linked {
    std::uint32_t position;  // of the record in the table
    Record record;
  };

  void appendRun(std::span<const std::uint32_t> tracks, std::uint32_t first) {
    if (tracks.empty()) return;
    const std::uint32_t sizeAfter = sizeWith(tracks.size());
    runs_.push_back({tracks.data(), size_, sizeAfter, first});
    size_ = sizeAfter;
  }

  std::uint32_t sizeWith(std::size_t more) const {
    if (more > kMostRecords - size_) throw std::length_error("too many records for a file");
    return static_cast<std::uint32_t>(size_ + more);
  }

  std::uint32_t size_ = 0;
  LargeVector<Leaf> leaves_;    // that were appended one by one, in order
  LargeVector<Run> runs_;       // in order
  LargeVector<Linked> linked_;  // by position
};

}  // namespace Orvane
