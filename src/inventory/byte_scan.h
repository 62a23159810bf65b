#pragma once

#include <algorithm>
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
  for (std::size_t base = 0; base < text.size(); base += sizeof(pattern)) {
    std::uint64_t word = ~pattern;  // what is beyond the end is not wanted
    std::memcpy(&word, text.data() + base, std::min(sizeof(word), text.size() - base));
    const std::uint64_t difference = word ^ pattern;
    // The top bit of each byte that is zero in `difference`; no carry leaves a byte.
    std::uint64_t found = ~(((difference & kLowBits) + kLowBits) | difference | kLowBits);
    while (found != 0) {
      const bool little = std::endian::native == std::endian::little;
      const int bit = little ? std::countr_zero(found) : std::countl_zero(found);
      if (!use(base + static_cast<std::size_t>(bit) / 8)) return;
      found &= little ? found - 1 : ~(std::uint64_t{1} << (63 - bit));
    }
  }
}

}  // namespace Orvane
