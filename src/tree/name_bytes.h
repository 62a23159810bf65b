#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Orvane {

// Eight bytes of a name from `offset` on, as a number: of two names that agree before `offset`, the
// one with the lower number comes first. Past its end a name reads as zero bytes, so equal numbers
// leave open which of two names that differ in their zero bytes at the end comes first.
inline std::uint64_t nameBytesAt(std::string_view name, std::size_t offset) {
  std::uint64_t bytes = 0;
  const std::size_t end = std::min(offset + sizeof(bytes), name.size());
  for (std::size_t i = offset; i < end; ++i) {
    bytes |= std::uint64_t{static_cast<std::uint8_t>(name[i])} << (56 - 8 * (i - offset));
  }
  return bytes;
}

}  // namespace Orvane
