// Reads the little-endian integers of an inventory file, whatever the byte order of this machine.
#pragma once

#include <cstdint>

namespace Orvane {

// `bytes` must point at two readable bytes. Any alignment.
inline std::uint16_t readLe16(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] | (bytes[1] << 8));
}

// `bytes` must point at four readable bytes. Any alignment.
inline std::uint32_t readLe32(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} | (std::uint32_t{bytes[1]} << 8) |
         (std::uint32_t{bytes[2]} << 16) | (std::uint32_t{bytes[3]} << 24);
}

}  // namespace Orvane
