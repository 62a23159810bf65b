#pragma once

#include <cstdint>
#include <string_view>

namespace Orvane {

// Hashes for tables whose order never shows. They have a key that each process chooses anew:
// whoever makes a list can't choose names or ids that all meet in one place of a table and take
// time with the square of their number.
struct HashKey {
  std::uint64_t first;
  std::uint64_t second;
  std::uint64_t odd;
};

// The key of this process.
extern const HashKey kHashKey;

// Both halves of a product, one over the other.
inline std::uint64_t foldedProduct(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = Wide{a} * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// One product alone would let values in steps meet in few places, with one key in a hundred.
inline std::uint64_t hashOfNumber(std::uint64_t value) {
  return foldedProduct(foldedProduct(value ^ kHashKey.first, kHashKey.odd), 0x9E3779B97F4A7C15);
}

inline std::uint64_t hashOfId(std::uint32_t id) {
  return hashOfNumber(id);
}

std::uint64_t hashOfName(std::string_view name);

// The hash of a name together with an id.
inline std::uint32_t hashNameAndId(std::string_view name, std::uint32_t id) {
  return static_cast<std::uint32_t>(hashOfNumber(hashOfName(name) ^ id));
}

}  // namespace Orvane
