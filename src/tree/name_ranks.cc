#include "tree/name_ranks.h"

#include <algorithm>
#include <cstddef>

#include "tree/name_bytes.h"
#include "tree/prefetch.h"

namespace Orvane {

void NameRanks::add(std::uint32_t number, std::string_view name) {
  if (knows(number)) return;
  if (number >= isKnown_.size()) {
    isKnown_.resize(std::max<std::size_t>(number + std::size_t{1}, 2 * isKnown_.size()));
  }
  isKnown_[number] = true;
  keys_.push_back(
      {nameBytesAt(name, 0), name.data(), static_cast<std::uint32_t>(name.size()), number});
}

void NameRanks::prefetchByte(const Key& key, std::size_t offset) {
  if (offset < key.size) prefetch(key.name + offset);
}

void NameRanks::rank() {
  // Keys that agree in all bytes before `offset` and are still to be told apart.
  struct Part {
    std::size_t begin;
    std::size_t end;
    std::size_t offset;
  };
  std::vector<Part> parts = {{0, keys_.size(), 0}};
  std::vector<bool> startsRank(keys_.size());
  while (!parts.empty()) {
    const Part part = parts.back();
    parts.pop_back();
    bool byLength = part.offset > 0;
    for (std::size_t i = part.begin; i < part.end && byLength; ++i) {
      byLength = keys_[i].size <= part.offset;
    }
    if (part.offset > 0) {
      for (std::size_t i = part.begin; i < part.end; ++i) {
        constexpr std::size_t kDistance = 16;
        if (part.end - i > kDistance) prefetchByte(keys_[i + kDistance], part.offset);
        Key& key = keys_[i];
        key.bytes = byLength ? key.size : nameBytesAt({key.name, key.size}, part.offset);
      }
    }
    std::sort(keys_.begin() + static_cast<std::ptrdiff_t>(part.begin),
              keys_.begin() + static_cast<std::ptrdiff_t>(part.end),
              [](const Key& a, const Key& b) { return a.bytes < b.bytes; });
    for (std::size_t i = part.begin; i < part.end;) {
      const std::size_t begin = i;
      while (i < part.end && keys_[i].bytes == keys_[begin].bytes) ++i;
      startsRank[begin] = true;
      if (i - begin > 1 && !byLength) parts.push_back({begin, i, part.offset + sizeof(Key::bytes)});
    }
  }

  ranks_.resize(isKnown_.size());
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    if (startsRank[i]) ++highest_;
    ranks_[keys_[i].number] = highest_;
  }
}

}  // namespace Orvane
