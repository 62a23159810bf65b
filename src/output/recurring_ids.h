#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "tree/huge_pages.h"

namespace Orvane {

// Tells the ids that are met once from those that are met again, in two bits for each of some
// places that ids share: a few are taken for met again that aren't. Ids that count up take places
// that count up, and share none.
class RecurringIds {
 public:
  // For about so many ids.
  explicit RecurringIds(std::size_t count)
      : words_(std::bit_ceil(std::max<std::size_t>(count * kPlacesPerId / kPlacesPerWord, 1))) {}

  // May be called by several threads at once.
  void meet(std::uint32_t id) {
    const std::atomic_ref<std::uint64_t> word(words_[wordOf(id)]);
    const std::uint64_t met = bitOf(id);
    if ((word.fetch_or(met, std::memory_order_relaxed) & met) != 0) {
      word.fetch_or(met << 1, std::memory_order_relaxed);
    }
  }

  // The same as to meet it twice. Not while others meet ids.
  void meetOften(std::uint32_t id) { words_[wordOf(id)] |= bitOf(id) | bitOf(id) << 1; }

  // Whether the id may have been met more than once. Not while others meet ids.
  bool mayRecur(std::uint32_t id) const { return (words_[wordOf(id)] & (bitOf(id) << 1)) != 0; }

 private:
  static constexpr std::size_t kPlacesPerId = 8;
  static constexpr std::size_t kPlacesPerWord = 32;

  std::size_t wordOf(std::uint32_t id) const { return id / kPlacesPerWord & (words_.size() - 1); }
  static std::uint64_t bitOf(std::uint32_t id) {
    return std::uint64_t{1} << (2 * (id % kPlacesPerWord));
  }

  LargeVector<std::uint64_t> words_;  // a power of two of them
};

}  // namespace Orvane
