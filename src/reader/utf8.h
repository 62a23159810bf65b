#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Orvane {

// One step through text that may not be UTF-8.
struct Utf8Char {
  std::uint32_t codePoint = 0;  // stays 0 when not valid
  std::uint8_t length = 1;      // bytes taken: 1 to 4, and 1 when not valid
  bool valid = false;
};

// The character at the front of `text`, which must not be empty. Surrogates, values beyond U+10FFFF
// and forms longer than needed are not valid.
Utf8Char firstUtf8Char(std::string_view text);

// The number of leading bytes that are valid UTF-8; all of them when `text` is.
std::size_t validUtf8Prefix(std::string_view text);

inline bool isUtf8(std::string_view text) {
  return validUtf8Prefix(text) == text.size();
}

}  // namespace Orvane
