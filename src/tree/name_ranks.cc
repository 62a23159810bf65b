#include "tree/name_ranks.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <span>
#include <utility>

#include "tree/key_sort.h"
#include "tree/name_bytes.h"
#include "tree/parallel.h"
#include "tree/prefetch.h"

namespace Orvane {

void NameRanks::reserve(std::size_t count, std::uint32_t highestNumber) {
  keys_.reserve(count);
  ranks_.resize(highestNumber + std::size_t{1});
}

void NameRanks::add(std::uint32_t number, std::string_view name) {
  if (number >= ranks_.size()) {
    ranks_.resize(std::max<std::size_t>(number + std::size_t{1}, 2 * ranks_.size()));
  }
  keys_.push_back(
      {nameBytesAt(name, 0), name.data(), static_cast<std::uint32_t>(name.size()), number});
}

void NameRanks::prefetchByte(const Key& key, std::size_t offset) {
  if (offset < key.size) prefetch(key.name + offset);
}

// Keys with the same first byte get together, in the order of those bytes. Returns where the keys
// of each byte begin, and the end.
std::vector<std::size_t> NameRanks::partByFirstByte() {
  constexpr std::size_t kBytes = 256;
  const auto firstByte = [](const Key& key) { return static_cast<std::size_t>(key.bytes >> 56); };
  std::vector<std::size_t> begins(kBytes + 1);
  for (const Key& key : keys_) ++begins[firstByte(key) + 1];
  std::partial_sum(begins.begin(), begins.end(), begins.begin());
  // Each key goes to the part of its byte, for the one that is in its place, which may be itself.
  std::vector<std::size_t> free(begins.begin(), begins.end() - 1);
  for (std::size_t byte = 0; byte < kBytes; ++byte) {
    while (free[byte] < begins[byte + 1]) {
      Key& key = keys_[free[byte]];
      std::swap(key, keys_[free[firstByte(key)]++]);
    }
  }
  return begins;
}

void NameRanks::rank() {
  LargeVector<std::uint8_t> startsRank(keys_.size());
  const std::vector<std::size_t> begins = partByFirstByte();
  forEachInParallel(begins.size() - 1, workersFor(keys_.size()), [&](std::size_t i, std::size_t) {
    if (begins[i] < begins[i + 1]) order(begins[i], begins[i + 1], startsRank);
  });
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    if (startsRank[i]) ++rank;
    ranks_[keys_[i].number] = rank;
  }
  release(keys_);
}

// Orders some of the keys by their names, and marks the first one of each name.
void NameRanks::order(std::size_t begin, std::size_t end, LargeVector<std::uint8_t>& startsRank) {
  // Keys that agree in all bytes before `offset` and are still to be told apart.
  struct Part {
    std::size_t begin;
    std::size_t end;
    std::size_t offset;
  };
  std::vector<Part> parts = {{begin, end, 0}};
  while (!parts.empty()) {
    const Part part = parts.back();
    parts.pop_back();
    const std::span<Key> keys = std::span(keys_).subspan(part.begin, part.end - part.begin);
    const bool byLength = std::all_of(keys.begin(), keys.end(),
                                      [&](const Key& key) { return key.size <= part.offset; });
    if (part.offset > 0) {
      for (std::size_t i = part.begin; i < part.end; ++i) {
        constexpr std::size_t kDistance = 16;
        if (part.end - i > kDistance) prefetchByte(keys_[i + kDistance], part.offset);
        Key& key = keys_[i];
        key.bytes = byLength ? key.size : nameBytesAt({key.name, key.size}, part.offset);
      }
    }
    sortByKey(keys, [](const Key& key) { return key.bytes; });
    for (std::size_t i = part.begin; i < part.end;) {
      const std::size_t first = i;
      while (i < part.end && keys_[i].bytes == keys_[first].bytes) ++i;
      startsRank[first] = 1;
      if (i - first > 1 && !byLength) parts.push_back({first, i, part.offset + sizeof(Key::bytes)});
    }
  }
}

}  // namespace Orvane
