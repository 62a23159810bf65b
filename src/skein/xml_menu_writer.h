#pragma once

#include <libxml/xmlwriter.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "skein/output_buffer.h"

namespace Orvane {

// Writes an XML menu tree, element by element, each on a line of its own.
class XmlMenuWriter {
 public:
  // Throws std::bad_alloc when out of memory, as do the other operations.
  explicit XmlMenuWriter(OutputBuffer& out);

  void startElement(const char* tag);
  void nameAttribute(std::string_view name);
  void numberAttribute(const char* attribute, std::uint32_t value);
  void endElement();
  // Ends the document. Nothing may follow.
  void finish();

  // What an XML text can hold of `name`: true for all of it. Valid UTF-8 without control characters
  // other than tab, line feed and carriage return, and without U+FFFE and U+FFFF.
  static bool canHold(std::string_view name);

 private:
  struct Free {
    void operator()(xmlTextWriter* writer) const { xmlFreeTextWriter(writer); }
  };

  void breakLine();

  std::unique_ptr<xmlTextWriter, Free> writer_;
  std::uint32_t depth_ = 0;
  bool hasChildren_ = false;  // the innermost open element does
  std::string text_;          // kept for its memory
};

}  // namespace Orvane
