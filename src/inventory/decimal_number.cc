#include "inventory/decimal_number.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <limits>

namespace Orvane {

namespace {

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr std::size_t kFewDigits = 8;
constexpr std::uint64_t kEachByte = 0x0101010101010101;

template <typename Word>
std::uint64_t load(const char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

// The characters of a text of 1 to 8, the first one lowest, behind as many '0' as make it 8. Pieces
// of it that overlap are put together, as to go by each size would be hard to foresee.
std::uint64_t paddedWord(std::string_view text) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  const std::size_t padding = 8 * (kFewDigits - text.size());  // in bits
  std::uint64_t word = 0;
  if (text.size() >= 4) {
    word = load<std::uint32_t>(begin) << padding | load<std::uint32_t>(end - 4) << 32;
  } else {
    word = load<std::uint8_t>(begin) << padding | load<std::uint8_t>(end - 1) << 56 |
           load<std::uint8_t>(begin + text.size() / 2) << (padding + text.size() / 2 * 8);
  }
  return word | (kEachByte * '0' & ((std::uint64_t{1} << padding) - 1));
}

bool areDigits(std::uint64_t word) {
  constexpr std::uint64_t kTopBits = 0x80 * kEachByte;
  constexpr std::uint64_t kToTopBit = (0x80 - '9' - 1) * kEachByte;
  // A byte above '9' gets its top bit set by the addition or has it set after the subtraction, one
  // below '0' after that: at least the lowest such byte does, since digits carry nothing to it.
  return (((word + kToTopBit) | (word - kEachByte * '0')) & kTopBits) == 0;
}

// The number that eight digits make, the first one lowest: joined two by two.
std::uint32_t numberOf(std::uint64_t digits) {
  const std::uint64_t ones = digits - kEachByte * '0';
  const std::uint64_t pairs = (ones * 10 + (ones >> 8)) & 0x00FF00FF00FF00FF;
  const std::uint64_t fours = (pairs * 100 + (pairs >> 16)) & 0x0000FFFF0000FFFF;
  return static_cast<std::uint32_t>(fours * 10'000 + (fours >> 32));
}

}  // namespace

std::int32_t parseDecimal(std::string_view text) {
  // Nearly all are of this kind, and of a length that is hard to foresee. (A word has its first
  // character lowest only where bytes are in that order.)
  if (std::endian::native == std::endian::little && text.size() - 1 < kFewDigits) {
    const std::uint64_t word = paddedWord(text);
    if (areDigits(word)) return static_cast<std::int32_t>(numberOf(word));
  }

  std::size_t at = 0;
  while (at < text.size() && isSpace(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;

  const auto isDigit = [&] { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
  const auto digit = [&] { return static_cast<std::uint64_t>(text[at] - '0'); };
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  constexpr std::uint64_t kSafe = kMax / 100;  // two more digits can't overflow
  const std::uint64_t limit = negative ? kMax + 1 : kMax;
  std::uint64_t magnitude = 0;
  for (; magnitude < kSafe && isDigit(); ++at) magnitude = magnitude * 10 + digit();
  for (; isDigit(); ++at) {
    magnitude = magnitude > (limit - digit()) / 10 ? limit : magnitude * 10 + digit();
  }
  return static_cast<std::int32_t>(
      static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude));
}

}  // namespace Orvane
