#include "inventory/media_id_index.h"

#include <algorithm>

#include "tree/prefetch.h"

namespace Orvane {

// Where an id in range stands if the ids count up in even steps.
std::size_t MediaIdIndex::likelyPlace(std::uint32_t id) const {
  const std::uint64_t first = ids_[0];
  return id == first ? 0 : (ids_.size() - 1) * (id - first) / (lastId_ - first);
}

// Where an id in range stands, or else the next one above it.
std::size_t MediaIdIndex::placeInList(std::uint32_t id) const {
  // From the likely place on in steps that double, until the id is passed.
  std::size_t begin = likelyPlace(id);
  std::size_t end = begin;
  for (std::size_t step = 1; ids_[begin] > id; step *= 2) begin -= std::min(step, begin);
  for (std::size_t step = 1; ids_[end] < id; step *= 2) {
    end += std::min(step, ids_.size() - 1 - end);
  }
  while (begin < end) {
    const std::size_t middle = begin + (end - begin) / 2;
    if (ids_[middle] < id) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return begin;
}

std::uint32_t MediaIdIndex::find(std::uint32_t id) const {
  if (!isList_) {
    const std::uint32_t* const number = numbers_.find(id);
    return number == nullptr ? kNoNumber : *number;
  }
  if (!isInRange(id)) return kNoNumber;
  const std::size_t place = placeInList(id);
  return ids_[place] == id ? firstNumber_ + static_cast<std::uint32_t>(place) : kNoNumber;
}

bool MediaIdIndex::hasEntry(std::uint32_t id) const {
  return isList_ ? find(id) != kNoNumber : numbers_.find(id) != nullptr;
}

std::uint32_t MediaIdIndex::enterOther(std::uint32_t id, std::uint32_t number) {
  if (isList_) {
    if (const std::uint32_t known = find(id)) return known;
    leaveList();
  }
  std::uint32_t& entered = numbers_.enter(id, number);
  if (entered == kNoNumber) entered = number;
  return entered;
}

void MediaIdIndex::enterEmpty(std::uint32_t id) {
  if (hasEntry(id)) return;
  leaveList();
  numbers_.enter(id, kNoNumber);
}

void MediaIdIndex::erase(std::uint32_t id) {
  if (!hasEntry(id)) return;
  leaveList();
  numbers_.erase(id);
}

void MediaIdIndex::clear() {
  isList_ = true;
  ids_.clear();
  numbers_.clear();
}

void MediaIdIndex::expect(std::uint32_t id) const {
  if (!isList_) {
    numbers_.expect(id);
  } else if (isInRange(id)) {
    prefetch(&ids_[likelyPlace(id)]);
  }
}

void MediaIdIndex::leaveList() {
  if (!isList_) return;
  numbers_.reserve(ids_.size());
  forEachPrefetched(
      ids_.size(),
      [&](std::size_t i) { numbers_.enter(ids_[i], firstNumber_ + static_cast<std::uint32_t>(i)); },
      [&](std::size_t i) { numbers_.expect(ids_[i]); });
  ids_.clear();
  isList_ = false;
}

}  // namespace Orvane
