#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "tree/huge_pages.h"
#include "tree/keyed_hash.h"
#include "tree/pages_ahead.h"
#include "tree/prefetch.h"

namespace Orvane {

// A map from 32-bit ids to small values other than kNone: open addressing with linear probing, at
// most three quarters full. A listener's million tracks go through several of these.
template <typename Value, Value kNone>
class IdMap {
 public:
  // The value entered under `id`, or nullptr. Good until the map changes.
  const Value* find(std::uint32_t id) const {
    if (slots_.empty()) return nullptr;
    const Slot& slot = slots_[place(id)];
    return slot.value != kNone ? &slot.value : nullptr;
  }

  // Asks for the place of `id`, which will soon be looked for.
  void expect(std::uint32_t id) const {
    if (!slots_.empty()) prefetch(&slots_[homeOf(id)]);
  }

  // The value under `id`, which is `value` if there was none. To be set to other than kNone only,
  // and good until the map changes.
  Value& enter(std::uint32_t id, Value value) {
    reserve(used_ + 1);
    Slot& slot = slots_[place(id)];
    if (slot.value == kNone) {
      slot = {id, value};
      ++used_;
    }
    return slot.value;
  }

  // Makes room for so many ids.
  void reserve(std::size_t ids) {
    std::size_t size = std::max<std::size_t>(slots_.size(), 16);
    while (4 * ids > 3 * size) size *= 2;
    if (size > slots_.size()) resize(size);
  }

  void erase(std::uint32_t id) {
    if (find(id) == nullptr) return;
    std::size_t hole = place(id);
    slots_[hole].value = kNone;
    --used_;
    // Whatever the probing for an entry would now miss because of the hole moves into it.
    for (std::size_t at = next(hole); slots_[at].value != kNone; at = next(at)) {
      const std::size_t home = homeOf(slots_[at].id);
      if (((at - home) & mask()) >= ((at - hole) & mask())) {
        slots_[hole] = slots_[at];
        slots_[at].value = kNone;
        hole = at;
      }
    }
  }

  void clear() {
    release(slots_);
    used_ = 0;
  }

 private:
  struct Slot {
    std::uint32_t id = 0;
    Value value = kNone;
  };

  std::size_t mask() const { return slots_.size() - 1; }
  std::size_t next(std::size_t at) const { return (at + 1) & mask(); }

  std::size_t homeOf(std::uint32_t id) const {
    return static_cast<std::size_t>(hashOfId(id)) & mask();
  }

  // Where `id` is, or would go.
  std::size_t place(std::uint32_t id) const {
    std::size_t at = homeOf(id);
    while (slots_[at].value != kNone && slots_[at].id != id) at = next(at);
    return at;
  }

  void resize(std::size_t size) {
    auto old = makeLargeVector<Slot>(size);
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.value != kNone) slots_[place(slot.id)] = slot;
    }
  }

  LargeVector<Slot> slots_;  // a power of two of them
  std::size_t used_ = 0;
};

}  // namespace Orvane
