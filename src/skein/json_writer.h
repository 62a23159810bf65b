#pragma once

#include <cstdint>
#include <string_view>

#include "skein/output_buffer.h"

namespace Orvane {

// Writes JSON as it goes, without white space and without keeping anything but where commas belong.
// The caller opens and closes what it nests, at most 60 deep; keys appear in the order of the
// calls.
class JsonWriter {
 public:
  explicit JsonWriter(OutputBuffer& out) : out_(out) {}

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }

  // `name` must need no escaping. A value follows.
  void key(std::string_view name) {
    separate();
    out_.put('"');
    out_.put(name);
    out_.put("\":");
    afterKey_ = true;
  }

  // `text` must be valid UTF-8.
  void string(std::string_view text) {
    separate();
    quoted(text);
  }
  void number(std::uint64_t value) {
    separate();
    out_.number(value);
  }
  void boolean(bool value) {
    separate();
    out_.put(value ? "true" : "false");
  }
  void null() {
    separate();
    out_.put("null");
  }

  void field(std::string_view name, std::uint64_t value) {
    key(name);
    number(value);
  }
  void field(std::string_view name, std::string_view text) {
    key(name);
    string(text);
  }
  // Bytes from a file, `shown` of them as a name and `all` as stored: as they are if they are plain
  // UTF-8 text, otherwise escaped, with a second field "bytes" that holds all of them in hex.
  void nameField(std::string_view name, std::string_view shown, std::string_view all);

  // Between documents of a stream: a line end, after which anything may begin.
  void endLine() {
    out_.put('\n');
    needComma_ = 0;
  }

 private:
  void open(char bracket) {
    separate();
    out_.put(bracket);
    needComma_ <<= 1;
  }
  void close(char bracket) {
    out_.put(bracket);
    needComma_ >>= 1;
  }
  void separate() {
    if (afterKey_) {
      afterKey_ = false;
      return;
    }
    if ((needComma_ & 1) != 0) out_.put(',');
    needComma_ |= 1;
  }
  void quoted(std::string_view text);

  OutputBuffer& out_;
  std::uint64_t needComma_ = 0;  // lowest bit: the innermost open bracket has an element already
  bool afterKey_ = false;
};

}  // namespace Orvane
