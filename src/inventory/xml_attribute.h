#pragma once

#include <libxml/tree.h>

#include <cstdint>
#include <string>

#include "inventory/xml_shared_texts.h"

namespace Orvane {

// The value of one attribute of an element as its use takes it: of the same text that
// xmlpp::Attribute::get_value gives, which is that of the attribute without a namespace prefix, or
// the default that the document's own DTD declares.
//
// Reads the parsed document in place, one pass over the value's pieces: the library's own function
// takes time with the third power of the number of entity references in the value.
class XmlAttribute {
 public:
  // `element` must be an element; it and `shared` must outlive this object. `shared` must have been
  // used for attributes of this document only.
  XmlAttribute(const xmlNode& element, const char* name, XmlTextUse use, XmlSharedTexts& shared);

  bool isPresent() const { return text_ != nullptr; }

  // The value's bytes, UTF-8, zero-terminated, or as many of them as the use can depend on; only of
  // an attribute that is present. Good as long as this object and the document are.
  const char* text() const { return text_; }

  // A number's value as strtol reads it in base 10, its low 32 bits: blanks, a sign and digits up
  // to the first other character; out-of-range values saturate first. `absent` when there is no
  // attribute.
  std::uint32_t numberOr(std::uint32_t absent) const;

 private:
  const char* text_ = nullptr;
  std::string joined_;  // holds the text only when the document has it in several pieces
};

}  // namespace Orvane
