#pragma once

#include <cstdint>

#include "tree/hash_index.h"

namespace Orvane {

// Finds elements of a growing sequence by key, without holding more of them than their positions.
// The sequence and the keys are the caller's.
class PositionIndex {
 public:
  // The position of the element for which `matches(position)` holds, among those entered with that
  // hash. When there is none, enters `next` and returns it.
  template <typename Matches>
  std::uint32_t findOrInsert(std::uint32_t hash, std::uint32_t next, Matches matches) {
    return entries_
        .findOrInsert({hash, next}, [&](const Entry& entry) { return matches(entry.position); })
        .position;
  }

  // Forgets all elements.
  void clear() { entries_.clear(); }

 private:
  struct Entry {
    static constexpr std::uint32_t kFree = 0xFFFFFFFF;

    std::uint32_t hash = 0;
    std::uint32_t position = kFree;

    bool isFree() const { return position == kFree; }
  };

  HashIndex<Entry> entries_;
};

}  // namespace Orvane
