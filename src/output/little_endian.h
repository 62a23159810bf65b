// Integers of the inventory file, byte by byte, so that the host's byte order never shows.
#pragma once

#include <cstdint>

namespace Orvane {

// Store the low 8, 16 or 32 bits of `value` at `out`, lowest byte first.
inline void storeU8(std::uint8_t* out, std::uint32_t value) {
  *out = static_cast<std::uint8_t>(value);
}

inline void storeU16(std::uint8_t* out, std::uint32_t value) {
  storeU8(out, value);
  storeU8(out + 1, value >> 8);
}

inline void storeU32(std::uint8_t* out, std::uint32_t value) {
  storeU16(out, value);
  storeU16(out + 2, value >> 16);
}

}  // namespace Orvane
