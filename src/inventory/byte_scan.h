#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Orvane {

// Finds the places of a byte in a text, up to 64 places at a time. How many there are in the next
// eight bytes can't be foreseen: a branch on that for every eight would cost more than all the
// rest.
class ByteScan {
 public:
  static constexpr std::size_t kMostPlaces = 64;

  explicit ByteScan(char wanted) : pattern_(static_cast<std::uint8_t>(wanted) * kEachByte) {}

  // A bit for each of the first bytes of `text`, kMostPlaces at most, the lowest one for the first:
  // whether it is the wanted one.
  std::uint64_t placesIn(std::string_view text) const {
    const std::size_t size = std::min(text.size(), kMostPlaces);
    std::uint64_t places = 0;
    std::size_t at = 0;
    for (; size - at >= kWordSize; at += kWordSize) {
      places |= placesIn(wordAt(text.data() + at, kWordSize)) << at;
    }
    const std::size_t left = size - at;
    if (left == 0) return places;
    // Of a word that ends where the text does, its last bytes.
    const std::uint64_t last =
        size > left ? wordAt(text.data() + size - kWordSize, kWordSize) >> 8 * (kWordSize - left)
                    : wordAt(text.data(), left);
    const std::uint64_t ofLast = placesIn(last) & ((std::uint64_t{1} << left) - 1);
    return places | ofLast << at;
  }

 private:
  static constexpr std::size_t kWordSize = sizeof(std::uint64_t);
  static constexpr std::uint64_t kEachByte = 0x0101010101010101;
  static constexpr std::uint64_t kLowBits = 0x7F * kEachByte;

  // Bytes, the first one lowest.
  static std::uint64_t wordAt(const char* bytes, std::size_t count) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, count);
    return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
  }

  std::uint64_t placesIn(std::uint64_t word) const {
    const std::uint64_t difference = word ^ pattern_;
    // The top bit of each byte that is zero in `difference`; no carry leaves a byte.
    const std::uint64_t found = ~(((difference & kLowBits) + kLowBits) | difference | kLowBits);
    // The product has them side by side in its highest byte, as each pair of bits meets once.
    constexpr std::uint64_t kGather = 0x0102040810204080;
    return (found >> 7) * kGather >> 56;
  }

  std::uint64_t pattern_;
};

// Calls `use` with the position of each `wanted` in `text`, from the front, until it returns false.
template <typename Use>
void forEachOccurrence(std::string_view text, char wanted, Use use) {
  const ByteScan scan(wanted);
  for (std::size_t base = 0; base < text.size(); base += ByteScan::kMostPlaces) {
    for (std::uint64_t places = scan.placesIn(text.substr(base)); places != 0;
         places &= places - 1) {
      if (!use(base + static_cast<std::size_t>(std::countr_zero(places)))) return;
    }
  }
}

}  // namespace Orvane
