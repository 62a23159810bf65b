#include "reader/utf8.h"

namespace Orvane {
namespace {

std::uint32_t byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

}  // namespace

Utf8Char firstUtf8Char(std::string_view text) {
  const std::uint32_t lead = byteAt(text, 0);
  if (lead < 0x80) return {lead, 1, true};

  std::uint8_t length = 0;
  std::uint32_t smallest = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 2;
    smallest = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3;
    smallest = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4;
    smallest = 0x10000;
  } else {
    return {};
  }
  if (text.size() < length) return {};

  std::uint32_t codePoint = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const std::uint32_t next = byteAt(text, i);
    if ((next & 0xC0) != 0x80) return {};
    codePoint = codePoint << 6 | (next & 0x3F);
  }
  const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  if (codePoint < smallest || codePoint > 0x10FFFF || surrogate) return {};
  return {codePoint, length, true};
}

std::size_t validUtf8Prefix(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (byteAt(text, at) < 0x80) {
      ++at;
      continue;
    }
    const Utf8Char next = firstUtf8Char(text.substr(at));
    if (!next.valid) break;
    at += next.length;
  }
  return at;
}

}  // namespace Orvane
