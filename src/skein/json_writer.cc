#include "skein/json_writer.h"

#include "reader/text_escape.h"
#include "reader/utf8.h"

namespace Orvane {
namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101;
constexpr std::uint64_t kHighs = 0x8080808080808080;

bool needsEscape(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

// True if one of eight characters may need an escape; never false if one does.
bool mayNeedEscape(const char* text) {
  std::uint64_t word = 0;
  std::memcpy(&word, text, sizeof word);
  const auto below = [word](std::uint64_t mask, std::uint64_t limit) {
    const std::uint64_t value = word ^ mask;
    return (value - kOnes * limit) & ~value & kHighs;
  };
  return (below(0, 0x20) | below(kOnes * '"', 1) | below(kOnes * '\\', 1)) != 0;
}

}  // namespace

void JsonWriter::quoted(std::string_view text) {
  out_.put('"');
  std::size_t begin = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    while (i + 8 <= text.size() && !mayNeedEscape(text.data() + i)) i += 8;
    if (i == text.size()) break;
    if (!needsEscape(text[i])) continue;
    out_.put(text.substr(begin, i - begin));
    begin = i + 1;
    if (text[i] == '"' || text[i] == '\\') {
      out_.put('\\');
      out_.put(text[i]);
    } else {
      out_.put("\\u");
      out_.hex(static_cast<unsigned char>(text[i]), 4);
    }
  }
  out_.put(text.substr(begin));
  out_.put('"');
}

void JsonWriter::nameField(std::string_view name, std::string_view shown, std::string_view all) {
  if (shown.size() == all.size() && isUtf8(shown)) {
    field(name, shown);
    return;
  }
  field(name, escaped(shown));
  key("bytes");
  separate();
  out_.put('"');
  for (const char c : all) out_.hex(static_cast<unsigned char>(c), 2);
  out_.put('"');
}

}  // namespace Orvane
