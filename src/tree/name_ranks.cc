#include "tree/name_ranks.h"

#include <algorithm>
#include <cstddef>

namespace Orvane {

void NameRanks::add(std::uint32_t number, std::string_view name) {
  if (number >= names_.size()) {
    const std::size_t size = std::max<std::size_t>(number + std::size_t{1}, 2 * names_.size());
    names_.resize(size);
    isKnown_.resize(size);
  }
  if (isKnown_[number]) return;
  isKnown_[number] = true;
  names_[number] = name;
  keys_.push_back({0, number});
}

// Past its end a name reads as zero bytes. That leaves undecided only names that differ in how many
// zero bytes they end with.
std::uint64_t NameRanks::bytesAt(std::uint32_t number, std::size_t offset) const {
  const std::string_view name = names_[number];
  std::uint64_t bytes = 0;
  const std::size_t end = std::min(offset + sizeof(bytes), name.size());
  for (std::size_t i = offset; i < end; ++i) {
    bytes |= std::uint64_t{static_cast<std::uint8_t>(name[i])} << (56 - 8 * (i - offset));
  }
  return bytes;
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
    bool byLength = true;
    for (std::size_t i = part.begin; i < part.end && byLength; ++i) {
      byLength = names_[keys_[i].number].size() <= part.offset;
    }
    for (std::size_t i = part.begin; i < part.end; ++i) {
      const std::uint32_t number = keys_[i].number;
      keys_[i].bytes = byLength ? names_[number].size() : bytesAt(number, part.offset);
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

  ranks_.resize(names_.size());
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    if (startsRank[i]) ++highest_;
    ranks_[keys_[i].number] = highest_;
  }
}

}  // namespace Orvane
