#include "reader/text_escape.h"

#include <cstdint>

#include "reader/utf8.h"

namespace Orvane {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

void appendHexByte(std::string& out, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  out += "\\x";
  out += kHexDigits[value >> 4];
  out += kHexDigits[value & 15];
}

// C0 and C1 control characters and DEL, line and paragraph separators, and the marks that change
// the direction of the text around them: none of them may reach a terminal from a title. Bytes that
// are no character count as one of value 0.
bool isUnprintable(std::uint32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

std::optional<int> hexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return std::nullopt;
}

// Appends what the escape at the front of `text` stands for; returns its length, or 0 if it is
// none.
std::size_t appendUnescaped(std::string& out, std::string_view text) {
  if (text.size() < 2) return 0;
  switch (text[1]) {
    case 'n':
      out += '\n';
      return 2;
    case 'r':
      out += '\r';
      return 2;
    case 't':
      out += '\t';
      return 2;
    case 'x': {
      if (text.size() < 4) return 0;
      const std::optional<int> high = hexValue(text[2]);
      const std::optional<int> low = hexValue(text[3]);
      if (!high || !low) return 0;
      out += static_cast<char>(*high * 16 + *low);
      return 4;
    }
    case '\\':
    case '/':
    case '"':
      out += text[1];
      return 2;
    default:
      return 0;
  }
}

}  // namespace

void appendEscaped(std::string& out, std::string_view bytes, std::string_view also) {
  while (!bytes.empty()) {
    const Utf8Char next = firstUtf8Char(bytes);
    const char front = bytes.front();
    if (front == '\n') {
      out += "\\n";
    } else if (front == '\r') {
      out += "\\r";
    } else if (front == '\t') {
      out += "\\t";
    } else if (isUnprintable(next.codePoint)) {
      for (std::size_t i = 0; i < next.length; ++i) appendHexByte(out, bytes[i]);
    } else {
      if (front == '\\' || also.find(front) != std::string_view::npos) out += '\\';
      out += bytes.substr(0, next.length);
    }
    bytes.remove_prefix(next.length);
  }
}

std::string escaped(std::string_view bytes, std::string_view also) {
  std::string out;
  appendEscaped(out, bytes, also);
  return out;
}

std::optional<std::string> unescaped(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    std::size_t length = 1;
    if (text.front() == '\\') {
      length = appendUnescaped(out, text);
      if (length == 0) return std::nullopt;
    } else {
      out += text.front();
    }
    text.remove_prefix(length);
  }
  return out;
}

std::optional<std::vector<std::string>> splitPath(std::string_view path) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= path.size(); ++i) {
    if (i < path.size() && path[i] == '\\') {
      ++i;
      continue;
    }
    if (i < path.size() && path[i] != '/') continue;
    if (i > begin) {
      std::optional<std::string> part = unescaped(path.substr(begin, i - begin));
      if (!part) return std::nullopt;
      parts.push_back(*std::move(part));
    }
    begin = i + 1;
  }
  // A path that ends in a lone backslash leaves its last part unread.
  if (begin < path.size()) return std::nullopt;
  return parts;
}

}  // namespace Orvane
