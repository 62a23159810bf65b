#pragma once

#include <cstddef>
#include <cstdint>

#include "inventory/id_map.h"
#include "tree/chunked_list.h"

namespace Orvane {

// Finds the numbers of tracks, which are not 0, by their media ids.
//
// In most lists the media ids count up, in whatever steps. As long as each id entered is above all
// before it, and its number the next one, the ids are kept as they come, 4 bytes each: a sorted
// list, in which one is found at a step or two where the ids' own steps are about even, and in up
// to log n steps otherwise. With anything else, or when one is taken out, all are put into a hash
// table, and stay there until clear().
//
// Entering and erasing throw std::bad_alloc when memory runs out; it then holds what it held
// before.
class MediaIdIndex {
 public:
  // The number under `id`, 0 if there is none.
  std::uint32_t find(std::uint32_t id) const;

  // Whether there is a number, or an empty entry, under `id`.
  bool hasEntry(std::uint32_t id) const;

  // The number under `id`, which is `number` if there was none.
  std::uint32_t enter(std::uint32_t id, std::uint32_t number) {
    const bool isNext = ids_.size() == 0 || (id > lastId_ && number == firstNumber_ + ids_.size());
    if (!isList_ || !isNext) return enterOther(id, number);
    ids_.push_back(id);
    if (ids_.size() == 1) firstNumber_ = number;
    lastId_ = id;
    return number;
  }

  // Makes an empty entry under `id`, unless there is one.
  void enterEmpty(std::uint32_t id);

  void erase(std::uint32_t id);

  void clear();

  // Says that there will be about so many ids. Where they need a table, it gets room for them, if
  // there is memory: to grow in steps would move each several times.
  void expectCount(std::size_t ids);

  // Asks for the place of `id`, which will soon be looked for or entered.
  void expect(std::uint32_t id) const;

 private:
  static constexpr std::uint32_t kNoNumber = 0;

  // Places in the list from `begin` on and below `end`; the values from `low` on and below `high`.
  struct Range {
    std::size_t begin;
    std::size_t end;
    std::uint64_t low;
    std::uint64_t high;
  };

  using List = ChunkedList<std::uint32_t>;

  bool isInRange(std::uint32_t id) const {
    return ids_.size() > 0 && id >= ids_[0] && id <= lastId_;
  }
  static std::size_t likelyPlace(const Range& range, std::uint32_t id);
  template <typename ValueAt>
  static std::size_t lastNotAbove(const Range& range, std::uint32_t id, ValueAt valueAt);
  Range chunkOf(std::uint32_t id) const;
  std::uint32_t enterOther(std::uint32_t id, std::uint32_t number);
  void leaveList();
  void makeRoom();

  bool isList_ = true;
  List ids_;                       // as long as isList_
  std::uint32_t lastId_ = 0;       // of those
  std::uint32_t firstNumber_ = 0;  // under the first of them
  std::size_t expected_ = 0;       // how many ids
  // Otherwise; kNoNumber in empty entries.
  IdMap<IdEntry<std::uint32_t, 0xFFFFFFFF>> numbers_;
};

}  // namespace Orvane
