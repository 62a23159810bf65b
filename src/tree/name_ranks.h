#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "tree/huge_pages.h"
#include "tree/prefetch.h"

namespace Orvane {

// The places of names in their order as unsigned bytes, for names that are known by numbers from 0
// on: ranks compare as the names do, equal ones of equal names.
class NameRanks {
 public:
  // Gives the name with a number, the same each time. Its bytes must stay where they are until
  // rank() returns. Several threads may ask at once.
  using NameOf = std::function<std::string_view(std::size_t number)>;

  // Ranks the names with the numbers below `count`, which 32 bits have room for, in place of those
  // that it has ranked before.
  void rank(std::size_t count, const NameOf& nameOf);

  // The rank of the name with that number: how many names come before it.
  std::uint32_t operator[](std::uint32_t number) const { return ranks_[number]; }

  // Says that this will soon be asked for.
  void expect(std::uint32_t number) const { prefetch(&ranks_[number]); }

 private:
  // A name, and eight bytes of it, in the order of whose values the names come.
  struct Key {
    std::uint64_t bytes;
    const char* name;
    std::uint32_t size;
    std::uint32_t number;
  };

  class Parts;

  void rankPart(std::span<Key> all, std::uint32_t firstRank);
  static void prefetchByte(const Key& key, std::size_t offset);

  LargeVector<std::uint32_t> ranks_;  // by number
};

}  // namespace Orvane
