#pragma once

#include <cstdint>
#include <string_view>

namespace Orvane {

// The number at the beginning of `text` as atoi reads it: white space, a sign, and digits up to the
// first other character; 0 without digits, never an error. Like atoi on the machines where the list
// files come from, a number out of the 64-bit range becomes the nearest one within, and of the
// result the low 32 bits count: 4294967295 is -1.
std::int32_t parseDecimal(std::string_view text);

// The same as an id, which has no sign.
inline std::uint32_t parseId(std::string_view text) {
  return static_cast<std::uint32_t>(parseDecimal(text));
}

}  // namespace Orvane
