#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvane::test {

// ASCII text in characters of `width` bytes.
inline std::string wide(std::string_view text, std::size_t width, bool bigEndian) {
  std::string result;
  for (const char c : text) {
    const std::string zeros(width - 1, '\0');
    result += bigEndian ? zeros + c : c + zeros;
  }
  return result;
}

}  // namespace Orvane::test
