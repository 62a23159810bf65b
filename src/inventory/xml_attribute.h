#pragma once

#include <libxml/tree.h>

#include <cstdint>
#include <string>

namespace Orvane {

// The value of one attribute of an element, the same text that xmlpp::Attribute::get_value gives:
// the attribute without a namespace prefix, or the default that the document's own DTD declares.
//
// Reads the parsed document in place, one pass over the value's pieces: the library's own function
// takes time with the third power of the number of entity references in the value.
class XmlAttribute {
 public:
  // `element` must be an element and outlive this object.
  XmlAttribute(const xmlNode& element, const char* name);

  bool isPresent() const { return text_ != nullptr; }

  // The value's bytes, UTF-8, zero-terminated; only of an attribute that is present. Good as long
  // as this object and the document are.
  const char* text() const { return text_; }

  // The value as strtol reads it in base 10, its low 32 bits: blanks, a sign and digits up to the
  // first other character; out-of-range values saturate first. `absent` when there is no attribute.
  std::uint32_t numberOr(std::uint32_t absent) const;

 private:
  void join(const xmlNode* piece);

  const char* text_ = nullptr;
  std::string joined_;  // holds the text only when the document has it in several pieces
};

}  // namespace Orvane
