#include "inventory/xml_attribute.h"

#include <libxml/entities.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace Orvane {

namespace {

const char* bytes(const xmlChar* text) {
  return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

bool isText(const xmlNode& piece) {
  return piece.type == XML_TEXT_NODE || piece.type == XML_CDATA_SECTION_NODE;
}

}  // namespace

XmlAttribute::XmlAttribute(const xmlNode& element, const char* name) {
  const xmlAttr* const attribute =
      xmlHasNsProp(&element, reinterpret_cast<const xmlChar*>(name), nullptr);
  if (attribute == nullptr) return;
  if (attribute->type == XML_ATTRIBUTE_DECL) {
    text_ = bytes(reinterpret_cast<const xmlAttribute*>(attribute)->defaultValue);
    return;
  }
  const xmlNode* const first = attribute->children;
  if (first == nullptr) {
    text_ = "";
  } else if (first->next == nullptr && isText(*first)) {
    text_ = bytes(first->content);
  } else {
    join(first);
    text_ = joined_.c_str();
  }
}

void XmlAttribute::join(const xmlNode* piece) {
  // An entity's pieces stand in its declaration, which is entered once for each reference, but
  // never from within itself.
  struct Entered {
    const xmlEntity* entity;
    const xmlNode* resume;
  };
  std::vector<Entered> entered;
  while (true) {
    if (piece == nullptr) {
      if (entered.empty()) return;
      piece = entered.back().resume;
      entered.pop_back();
      continue;
    }
    const xmlNode& here = *piece;
    piece = here.next;
    if (isText(here)) {
      joined_ += bytes(here.content);
    } else if (here.type == XML_ENTITY_REF_NODE) {
      const xmlEntity* const entity = xmlGetDocEntity(here.doc, here.name);
      if (entity == nullptr) {
        joined_ += bytes(here.content);
        continue;
      }
      const bool inside = std::any_of(entered.begin(), entered.end(),
                                      [&](const Entered& e) { return e.entity == entity; });
      if (inside) continue;
      entered.push_back({entity, piece});
      piece = entity->children;
    }
  }
}

std::uint32_t XmlAttribute::numberOr(std::uint32_t absent) const {
  if (!isPresent()) return absent;
  return static_cast<std::uint32_t>(std::strtol(text_, nullptr, 10));
}

}  // namespace Orvane
