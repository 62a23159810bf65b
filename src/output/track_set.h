#pragma once

#include <cstddef>
#include <cstdint>

#include "tree/huge_pages.h"

namespace Orvane {

// A set of tracks' numbers below a bound, a bit for each: all of it stays in the caches where a
// word for each would not.
class TrackSet {
 public:
  TrackSet() = default;
  explicit TrackSet(std::size_t bound) : words_(bound / kWordBits + 1) {}

  // Whether it wasn't in there before.
  bool insert(std::uint32_t track) {
    std::uint64_t& word = words_[track / kWordBits];
    const std::uint64_t bit = std::uint64_t{1} << track % kWordBits;
    const bool isNew = (word & bit) == 0;
    word |= bit;
    return isNew;
  }

 private:
  static constexpr std::size_t kWordBits = 64;

  LargeVector<std::uint64_t> words_;
};

}  // namespace Orvane
