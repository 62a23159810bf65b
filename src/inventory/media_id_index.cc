#include "inventory/media_id_index.h"

#include <algorithm>
#include <new>

#include "tree/prefetch.h"

namespace Orvane {

// Where `id` stands in the range if its values are about even.
std::size_t MediaIdIndex::likelyPlace(const Range& range, std::uint32_t id) {
  return range.begin + (range.end - range.begin) * (id - range.low) / (range.high - range.low);
}

// The last place in the range whose value isn't above `id`, as the first one's isn't.
template <typename ValueAt>
std::size_t MediaIdIndex::lastNotAbove(const Range& range, std::uint32_t id, ValueAt valueAt) {
  // From the likely place on in steps that double, until the id is passed.
  std::size_t place = likelyPlace(range, id);
  for (std::size_t step = 1; valueAt(place) > id; step *= 2) {
    place -= std::min(step, place - range.begin);
  }
  std::size_t above = place + 1;
  for (std::size_t step = 1; above < range.end && valueAt(above) <= id; step *= 2) {
    place = above;
    above += std::min(step, range.end - above);
  }
  while (above - place > 1) {
    const std::size_t middle = place + (above - place) / 2;
    (valueAt(middle) > id ? above : place) = middle;
  }
  return place;
}

// The chunk of the list where an id in range is, if it is in there: the list is searched for that
// first, then what stands together in memory.
MediaIdIndex::Range MediaIdIndex::chunkOf(std::uint32_t id) const {
  constexpr std::size_t kSize = List::kChunkSize;
  const std::size_t count = (ids_.size() + kSize - 1) / kSize;
  const std::uint64_t end = std::uint64_t{lastId_} + 1;
  const std::size_t chunk = lastNotAbove(Range{0, count, ids_[0], end}, id,
                                         [this](std::size_t i) { return ids_[i * kSize]; });
  const std::size_t begin = chunk * kSize;
  if (chunk + 1 == count) return {begin, ids_.size(), ids_[begin], end};
  return {begin, begin + kSize, ids_[begin], ids_[begin + kSize]};
}

std::uint32_t MediaIdIndex::find(std::uint32_t id) const {
  if (!isList_) {
    const auto* const entry = numbers_.find(id);
    return entry == nullptr ? kNoNumber : entry->value;
  }
  if (!isInRange(id)) return kNoNumber;
  const std::size_t place =
      lastNotAbove(chunkOf(id), id, [this](std::size_t i) { return ids_[i]; });
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
  std::uint32_t& entered = numbers_.enter({id, number}).value;
  if (entered == kNoNumber) entered = number;
  return entered;
}

void MediaIdIndex::enterEmpty(std::uint32_t id) {
  if (hasEntry(id)) return;
  leaveList();
  numbers_.enter({id, kNoNumber});
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
  expected_ = 0;
}

void MediaIdIndex::expectCount(std::size_t ids) {
  expected_ = ids;
  if (!isList_) makeRoom();
}

void MediaIdIndex::makeRoom() {
  try {
    numbers_.reserve(expected_);
  } catch (const std::bad_alloc&) {
    // What really comes may well fit.
  }
}

void MediaIdIndex::expect(std::uint32_t id) const {
  if (!isList_) {
    numbers_.expect(id);
  } else if (isInRange(id)) {
    prefetch(&ids_[likelyPlace(chunkOf(id), id)]);
  }
}

void MediaIdIndex::leaveList() {
  if (!isList_) return;
  makeRoom();
  numbers_.reserve(ids_.size());
  forEachPrefetched(
      ids_.size(),
      [&](std::size_t i) {
        numbers_.enter({ids_[i], firstNumber_ + static_cast<std::uint32_t>(i)});
      },
      [&](std::size_t i) { numbers_.expect(ids_[i]); });
  ids_.clear();
  isList_ = false;
}

}  // namespace Orvane
