#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/prefetch.h"

namespace Orvane {

// A map from 32-bit ids to small values: open addressing with linear probing, at most three
// quarters full. A listener's million tracks go through several of these.
template <typename Value>
class IdMap {
 public:
  // The value entered under `id`, or nullptr. Good until the map changes.
  const Value* find(std::uint32_t id) const {
    if (slots_.empty()) return nullptr;
    const Slot& slot = slots_[place(id)];
    return slot.used ? &slot.value : nullptr;
  }

  // Asks for the place of `id`, which will soon be looked for.
  void expect(std::uint32_t id) const {
    if (!slots_.empty()) prefetch(&slots_[homeOf(id)]);
  }

  // The value under `id`, entering a default one if there is none, and whether it was entered.
  std::pair<Value*, bool> enter(std::uint32_t id) {
    if (4 * (used_ + 1) > 3 * slots_.size()) grow();
    Slot& slot = slots_[place(id)];
    const bool isNew = !slot.used;
    if (isNew) {
      slot = {id, true, Value{}};
      ++used_;
    }
    return {&slot.value, isNew};
  }

  void erase(std::uint32_t id) {
    if (find(id) == nullptr) return;
    std::size_t hole = place(id);
    slots_[hole].used = false;
    --used_;
    // Whatever the probing for an entry would now miss because of the hole moves into it.
    for (std::size_t at = next(hole); slots_[at].used; at = next(at)) {
      const std::size_t home = homeOf(slots_[at].id);
      if (((at - home) & mask()) >= ((at - hole) & mask())) {
        slots_[hole] = slots_[at];
        slots_[at].used = false;
        hole = at;
      }
    }
  }

  void clear() {
    slots_.clear();
    used_ = 0;
  }

 private:
  struct Slot {
    std::uint32_t id = 0;
    bool used = false;
    Value value{};
  };

  std::size_t mask() const { return slots_.size() - 1; }
  std::size_t next(std::size_t at) const { return (at + 1) & mask(); }

  std::size_t homeOf(std::uint32_t id) const {
    // Ids come in runs and in steps; multiplying and folding spreads both over the table.
    std::uint64_t mixed = (id ^ (std::uint64_t{id} << 32)) * 0x9E3779B97F4A7C15;
    mixed ^= mixed >> 29;
    return static_cast<std::size_t>((mixed * 0xBF58476D1CE4E5B9) >> 32) & mask();
  }

  // Where `id` is, or would go.
  std::size_t place(std::uint32_t id) const {
    std::size_t at = homeOf(id);
    while (slots_[at].used && slots_[at].id != id) at = next(at);
    return at;
  }

  void grow() {
    std::vector<Slot, LargeAllocator<Slot>> old(slots_.empty() ? 16 : 2 * slots_.size());
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.used) slots_[place(slot.id)] = slot;
    }
  }

  std::vector<Slot, LargeAllocator<Slot>> slots_;  // a power of two of them
  std::size_t used_ = 0;
};

}  // namespace Orvane
