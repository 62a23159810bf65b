#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "tree/huge_pages.h"
#include "tree/pages_ahead.h"
#include "tree/prefetch.h"

namespace Orvane {

// Finds entries by keys that it doesn't hold: a hash table with open addressing. An Entry has a
// std::uint32_t `hash`, that of its key, and isFree(), which is true of Entry() and of no entry
// that is entered.
template <typename Entry>
class HashIndex {
 public:
  // The first entry for which `matches(entry)` holds, among those entered with the hash of `next`.
  // When there is none, enters `next` and returns it. Good until another one is entered, which
  // `matches` must not do.
  template <typename Matches>
  const Entry& findOrInsert(Entry next, Matches matches) {
    reserve(used_ + 1);
    std::size_t at = next.hash & mask();
    for (; !slots_[at].isFree(); at = (at + 1) & mask()) {
      if (slots_[at].hash == next.hash && matches(slots_[at])) return slots_[at];
    }
    slots_[at] = next;
    ++used_;
    return slots_[at];
  }

  // Makes room for so many entries.
  void reserve(std::size_t entries) {
    std::size_t size = std::max<std::size_t>(slots_.size(), 16);
    while (4 * entries > 3 * size) size *= 2;
    if (size > slots_.size()) resize(size);
  }

  // Forgets all entries.
  void clear() {
    release(slots_);
    used_ = 0;
  }

  // Asks for the place of an entry with that hash, which will soon be looked for, and for the next
  // ones, where it may be instead.
  void expect(std::uint32_t hash) const {
    if (slots_.empty()) return;
    prefetch(&slots_[hash & mask()]);
    prefetch(&slots_[(hash + 2) & mask()]);
  }

  // What stands in that place: mostly the entry with that hash, if there is one.
  Entry likely(std::uint32_t hash) const {
    return slots_.empty() ? Entry() : slots_[hash & mask()];
  }

 private:
  std::size_t mask() const { return slots_.size() - 1; }

  void resize(std::size_t size) {
    auto old = makeLargeVector<Entry>(size);
    old.swap(slots_);
    for (const Entry& entry : old) {
      if (entry.isFree()) continue;
      std::size_t at = entry.hash & mask();
      while (!slots_[at].isFree()) at = (at + 1) & mask();
      slots_[at] = entry;
    }
  }

  LargeVector<Entry> slots_;  // a power of two of them, at most three quarters of them used
  std::size_t used_ = 0;
};

}  // namespace Orvane
