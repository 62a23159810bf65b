#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Orvane {

// Calls `use` with the position of each `wanted` in `text`, from the front, until it returns false.
// Looks at eight bytes at a time: where the pieces between are short, as the fields of a line are,
// that takes less than to search for each of them.
template <typename Use>
void forEachOccurrence(std::string_view text, char wanted, Use use) {
  constexpr std::uint64_t kLowBits = 0x7F7F7F7F7F7F7F7F;
  constexpr std::uint64_t kEachByte = 0x0101010101010101;
  const std::uint64_t pattern = static_cast<std::uint8_t>(wanted) * kEachByte;

  // Whether to go on behind the eight bytes that are in `word`.
  const auto searchWord = [&](std::uint64_t word, std::size_t base) {
    const std::uint64_t difference = word ^ pattern;
    // The top bit of each byte that is zero in `difference`; no carry leaves a byte.
    std::uint64_t found = ~(((difference & kLowBits) + kLowBits) | difference | kLowBits);
    while (found != 0) {
      constexpr bool kLittle = std::endian::native == std::endian::little;
      const int bit = kLittle ? std::countr_zero(found) : std::countl_zero(found);
      if (!use(base + static_cast<std::size_t>(bit) / 8)) return false;
      found &= kLittle ? found - 1 : ~(std::uint64_t{1} << (63 - bit));
    }
    return true;
  };

  std::uint64_t word = 0;
  std::size_t base = 0;
  for (; text.size() - base >= sizeof(word); base += sizeof(word)) {
    std::memcpy(&word, text.data() + base, sizeof(word));
    if (!searchWord(word, base)) return;
  }
  if (base == text.size()) return;
  word = ~pattern;  // what is beyond the end is not wanted
  std::memcpy(&word, text.data() + base, text.size() - base);
  searchWord(word, base);
}

}  // namespace Orvane
