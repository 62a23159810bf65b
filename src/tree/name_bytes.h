#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Orvane {

// Eight bytes of a name from `offset` on, as a number: of two names that agree before `offset`, the
// one with the lower number comes first. Past its end a name reads as zero bytes, so equal numbers
// leave open which of two names that differ in their zero bytes at the end comes first.
inline std::uint64_t nameBytesAt(std::string_view name, std::size_t offset) {
  std::uint64_t bytes = 0;
  if (name.size() >= offset + sizeof(bytes)) {
    std::memcpy(&bytes, name.data() + offset, sizeof(bytes));
  } else if (name.size() > offset) {
    std::memcpy(&bytes, name.data() + offset, name.size() - offset);
  }
  return std::endian::native == std::endian::little ? __builtin_bswap64(bytes) : bytes;
}

}  // namespace Orvane
