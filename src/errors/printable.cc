#include "errors/printable.h"

#include <cstddef>
#include <cstdint>

namespace Orvane {

namespace {

// The length in bytes of the well-formed UTF-8 sequence at the beginning of `text`; 0 if there is
// none.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms, surrogates, and what is past the last code point.
  const std::uint8_t second = byte(1);
  if (lead == 0xE0 && second < 0xA0) return 0;
  if (lead == 0xED && second > 0x9F) return 0;
  if (lead == 0xF0 && second < 0x90) return 0;
  if (lead == 0xF4 && second > 0x8F) return 0;
  return length;
}

bool isControl(std::string_view sequence) {
  const auto lead = static_cast<std::uint8_t>(sequence[0]);
  if (sequence.size() == 1) return lead < 0x20 || lead == 0x7F;
  return lead == 0xC2 && static_cast<std::uint8_t>(sequence[1]) < 0xA0;
}

}  // namespace

std::string printable(std::string_view text) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string shown;
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    const std::string_view piece = text.substr(0, length == 0 ? 1 : length);
    text.remove_prefix(piece.size());
    if (piece == "\\") {
      shown += "\\\\";
    } else if (length == 0 || isControl(piece)) {
      for (const char c : piece) {
        const auto byte = static_cast<std::uint8_t>(c);
        shown += "\\x";
        shown += kHex[byte >> 4];
        shown += kHex[byte & 15];
      }
    } else {
      shown += piece;
    }
  }
  return shown;
}

}  // namespace Orvane
