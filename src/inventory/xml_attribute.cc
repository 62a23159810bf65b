#include "inventory/xml_attribute.h"

#include <cstdlib>

namespace Orvane {

XmlAttribute::XmlAttribute(const xmlNode& element, const char* name, XmlTextUse use,
                           XmlSharedTexts& shared) {
  const xmlAttr* const attribute =
      xmlHasNsProp(&element, reinterpret_cast<const xmlChar*>(name), nullptr);
  if (attribute == nullptr) return;
  if (attribute->type == XML_ATTRIBUTE_DECL) {
    text_ = shared.defaultOf(*reinterpret_cast<const xmlAttribute*>(attribute), use);
    return;
  }
  const xmlNode* const first = attribute->children;
  if (first == nullptr) {
    text_ = "";
  } else if (first->next == nullptr && first->type == XML_TEXT_NODE && first->content != nullptr) {
    text_ = reinterpret_cast<const char*>(first->content);
  } else {
    joined_ = shared.joined(first, use);
    text_ = joined_.c_str();
  }
}

std::uint32_t XmlAttribute::numberOr(std::uint32_t absent) const {
  if (!isPresent()) return absent;
  return static_cast<std::uint32_t>(std::strtol(text_, nullptr, 10));
}

}  // namespace Orvane
