#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tree/huge_pages.h"
#include "tree/keyed_hash.h"
#include "tree/pages_ahead.h"
#include "tree/prefetch.h"

namespace Orvane {

// The hash of a name together with an id, for PositionIndex.
inline std::uint32_t hashNameAndId(std::string_view name, std::uint32_t id) {
  return static_cast<std::uint32_t>(hashOfNumber(hashOfName(name) ^ id));
}

// Finds elements of a growing sequence by key without holding them: an open-addressing hash table
// of positions, eight bytes a slot. The sequence and the keys are the caller's.
class PositionIndex {
 public:
  // The position of the element for which `matches(position)` holds, among those entered with that
  // hash. When there is none, enters `next` and returns it.
  template <typename Matches>
  std::uint32_t findOrInsert(std::uint32_t hash, std::uint32_t next, Matches matches) {
    reserve(used_ + 1);
    std::size_t at = hash & (slots_.size() - 1);
    for (; slots_[at].position != kFree; at = (at + 1) & (slots_.size() - 1)) {
      if (slots_[at].hash == hash && matches(slots_[at].position)) return slots_[at].position;
    }
    slots_[at] = {hash, next};
    ++used_;
    return next;
  }

  // Makes room for so many elements.
  void reserve(std::size_t elements) {
    std::size_t size = std::max<std::size_t>(slots_.size(), 16);
    while (4 * elements > 3 * size) size *= 2;
    if (size > slots_.size()) resize(size);
  }

  // Forgets all elements.
  void clear() {
    release(slots_);
    used_ = 0;
  }

  // Asks for the place of an element with that hash, which will soon be looked for.
  void expect(std::uint32_t hash) const {
    if (!slots_.empty()) prefetch(&slots_[hash & (slots_.size() - 1)]);
  }

 private:
  static constexpr std::uint32_t kFree = 0xFFFFFFFF;

  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t position = kFree;
  };

  void resize(std::size_t size) {
    auto old = makeLargeVector<Slot>(size);
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.position == kFree) continue;
      std::size_t at = slot.hash & (slots_.size() - 1);
      while (slots_[at].position != kFree) at = (at + 1) & (slots_.size() - 1);
      slots_[at] = slot;
    }
  }

  LargeVector<Slot> slots_;  // a power of two of them, at most three quarters of them used
  std::size_t used_ = 0;
};

}  // namespace Orvane
