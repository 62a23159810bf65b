#include "skein/json_writer.h"

#include "reader/text_escape.h"
#include "reader/utf8.h"

namespace Orvane {
namespace {

bool needsEscape(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

}  // namespace

void JsonWriter::quoted(std::string_view text) {
  out_.put('"');
  std::size_t begin = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
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
