#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "tree/huge_pages.h"
#include "tree/keyed_hash.h"
#include "tree/pages_ahead.h"
#include "tree/prefetch.h"

namespace Orvane {

// Finds small entries by their 32-bit ids: open addressing with linear probing, at most three
// quarters full. A listener's million tracks go through several of these. An Entry has a
// std::uint32_t `id`, and isFree(), which is true of Entry() and of no entry that is entered.
template <typename Entry>
class IdMap {
 public:
  // The entry with that id, or nullptr. Good until the map changes.
  const Entry* find(std::uint32_t id) const {
    if (slots_.empty()) return nullptr;
    const Entry& slot = slots_[place(id)];
    return slot.isFree() ? nullptr : &slot;
  }

  // Where an entry was found.
  struct Hint {
    std::uint32_t id = 0;
    std::uint32_t place = 0;
  };

  // Looks first where the hint says, if it is about this id, and leaves a new one when it finds the
  // entry. Any hint will do.
  const Entry* find(std::uint32_t id, Hint& hint) const {
    if (hint.id == id && hint.place < slots_.size()) {
      const Entry& slot = slots_[hint.place];
      if (slot.id == id && !slot.isFree()) return &slot;
    }
    const Entry* const found = find(id);
    if (found != nullptr) hint = {id, static_cast<std::uint32_t>(found - slots_.data())};
    return found;
  }
  Entry* find(std::uint32_t id, Hint& hint) {
    return const_cast<Entry*>(std::as_const(*this).find(id, hint));
  }

  // Asks for the place of `id`, which will soon be looked for, and for the next ones, where it may
  // be instead.
  void expect(std::uint32_t id) const {
    if (slots_.empty()) return;
    const std::size_t home = homeOf(id);
    prefetch(&slots_[home]);
    prefetch(&slots_[(home + 2) & mask()]);
  }

  // The entry with the id of `entry`, which is `entry` if there was none. Its id may not be
  // changed, nor may it become free. Good until the map changes.
  Entry& enter(Entry entry) {
    reserve(used_ + 1);
    Entry& slot = slots_[place(entry.id)];
    if (slot.isFree()) {
      slot = entry;
      ++used_;
    }
    return slot;
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
    slots_[hole] = Entry();
    --used_;
    // Whatever the probing for an entry would now miss because of the hole moves into it.
    for (std::size_t at = next(hole); !slots_[at].isFree(); at = next(at)) {
      const std::size_t home = homeOf(slots_[at].id);
      if (((at - home) & mask()) >= ((at - hole) & mask())) {
        slots_[hole] = slots_[at];
        slots_[at] = Entry();
        hole = at;
      }
    }
  }

  void clear() {
    release(slots_);
    used_ = 0;
  }

  std::size_t size() const { return used_; }

 private:
  std::size_t mask() const { return slots_.size() - 1; }
  std::size_t next(std::size_t at) const { return (at + 1) & mask(); }

  std::size_t homeOf(std::uint32_t id) const {
    return static_cast<std::size_t>(hashOfId(id)) & mask();
  }

  // Where `id` is, or would go.
  std::size_t place(std::uint32_t id) const {
    std::size_t at = homeOf(id);
    while (!slots_[at].isFree() && slots_[at].id != id) at = next(at);
    return at;
  }

  void resize(std::size_t size) {
    auto old = makeLargeVector<Entry>(size);
    old.swap(slots_);
    for (const Entry& entry : old) {
      if (!entry.isFree()) slots_[place(entry.id)] = entry;
    }
  }

  LargeVector<Entry> slots_;  // a power of two of them
  std::size_t used_ = 0;
};

// For a map from ids to values other than kNone.
template <typename Value, Value kNone>
struct IdEntry {
  std::uint32_t id = 0;
  Value value = kNone;

  bool isFree() const { return value == kNone; }
};

}  // namespace Orvane
