#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tree/huge_pages.h"

namespace Orvane {

// The places of names in their order as unsigned bytes, for names that are known by dense numbers:
// ranks compare as the names do, equal ones of equal names.
class NameRanks {
 public:
  // Makes room for so many names, with numbers up to `highestNumber`.
  void reserve(std::size_t count, std::uint32_t highestNumber);

  // Adds a name; its bytes must stay until rank() is called. No number may come twice.
  void add(std::uint32_t number, std::string_view name);

  // Ranks all names added, which must be done once.
  void rank();

  // The rank of an added name, after rank().
  std::uint32_t operator[](std::uint32_t number) const { return ranks_[number]; }

 private:
  // A name, and eight bytes of it, in the order of whose values the names come.
  struct Key {
    std::uint64_t bytes;
    const char* name;
    std::uint32_t size;
    std::uint32_t number;
  };

  std::vector<std::size_t> partByFirstByte();
  void order(std::size_t begin, std::size_t end, LargeVector<std::uint8_t>& startsRank);
  static void prefetchByte(const Key& key, std::size_t offset);

  LargeVector<Key> keys_;
  LargeVector<std::uint32_t> ranks_;  // by number
};

}  // namespace Orvane
