#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace Orvane::fuzz {

// Takes decisions from an input, front to back; zeros when it is used up.
class ByteSource {
 public:
  explicit ByteSource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  bool isEmpty() const { return bytes_.empty(); }

  std::uint32_t byte() {
    if (bytes_.empty()) return 0;
    const std::uint32_t value = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return value;
  }

  // Mostly small, at times all 32 bits.
  std::uint32_t number() {
    const std::uint32_t value = byte();
    if (value < 0xF0) return value;
    std::uint32_t wide = 0;
    for (std::uint32_t i = 0; i < value % 4 + 1; ++i) wide = wide << 8 | byte();
    return value < 0xF8 ? wide : ~wide;
  }

  // Up to `size` bytes.
  std::string text(std::size_t size) {
    std::string taken;
    for (; size != 0 && !isEmpty(); --size) taken += static_cast<char>(byte());
    return taken;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace Orvane::fuzz
