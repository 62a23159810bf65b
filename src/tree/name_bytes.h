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
  constexpr std::size_t kSize = sizeof(std::uint64_t);
  const auto load = [&](std::size_t at, std::size_t size) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, name.data() + at, size);
    return std::endian::native == std::endian::little ? __builtin_bswap64(bytes) : bytes;
  };
  if (name.size() >= offset + kSize) return load(offset, kSize);
  if (name.size() <= offset) return 0;
  // A load of eight bytes is quicker than one of any other number that isn't known before.
  if (name.size() < kSize) return load(offset, name.size() - offset);
  return load(name.size() - kSize, kSize) << 8 * (offset + kSize - name.size());
}

}  // namespace Orvane
