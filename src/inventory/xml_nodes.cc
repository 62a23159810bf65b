#include "inventory/xml_nodes.h"

#include <cstdint>
#include <string_view>
#include <vector>

#include "inventory/xml_attribute.h"

namespace Orvane {

namespace {

// An element of a document, to be asked what a start tag can be asked.
class DomElement {
 public:
  DomElement(const xmlNode& element, XmlSharedTexts& texts) : element_(element), texts_(texts) {}

  bool isNamed(std::string_view name) const {
    return reinterpret_cast<const char*>(element_.name) == name;
  }
  XmlAttribute attribute(const char* name, XmlTextUse use = XmlTextUse::kNumber) const {
    return {element_, name, use, texts_};
  }

 private:
  const xmlNode& element_;
  XmlSharedTexts& texts_;
};

template <typename Element, typename Name>
void fill(MenuNode& node, const Element& element, const Name& name) {
  const auto number = [&](const char* attribute, std::uint32_t absent) {
    return element.attribute(attribute).numberOr(absent);
  };
  const std::uint32_t recType = number("rectype", RecType::kPlainMenu);
  std::uint32_t nodeType = NODE_TYPE_MENU;
  std::uint32_t mediaId = 0;
  std::uint32_t rating = 0;
  std::uint32_t attribMask = 0;
  if (element.isNamed("media")) {
    nodeType = NODE_TYPE_MEDIA;
    mediaId = number("mediaid", 0);
    rating = number("rating", 0);
    attribMask = number("attribmask", 0);
  } else if (element.isNamed("partition")) {
    attribMask = number("partitionid", 0);
  }
  node.setAll(nodeType, mediaId, name.isPresent() ? name.text() : "", recType, rating, attribMask);
}

// What libxml++ gives the type ContentNode, whose contents are not visited. An entity's declaration
// is one, so that a reference adds a node for the declaration but never leads into it.
bool isContent(const xmlNode& node) {
  switch (node.type) {
    case XML_TEXT_NODE:
    case XML_CDATA_SECTION_NODE:
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
    case XML_ENTITY_DECL:
      return true;
    default:
      return false;
  }
}

}  // namespace

MenuNode* XmlNodes::append(const xmlNode& domNode, MenuNode& parent) {
  if (domNode.type == XML_TEXT_NODE && xmlIsBlankNode(&domNode)) return nullptr;
  return &parent.appendChild([&](MenuNode& node) {
    if (domNode.type != XML_ELEMENT_NODE) return;
    const DomElement element(domNode, texts_);
    fill(node, element, element.attribute("name", XmlTextUse::kName));
  });
}

MenuNode* XmlNodes::append(const XmlStartTag& tag, MenuNode& parent) {
  return &parent.appendChild([&](MenuNode& node) { fill(node, tag, tag.attribute("name")); });
}

void XmlNodes::appendWhole(const xmlNode& domNode, MenuNode& parent) {
  struct Level {
    const xmlNode* next;
    MenuNode* parent;
  };
  std::vector<Level> open;
  const auto add = [&](const xmlNode& from, MenuNode& under) {
    MenuNode* const node = append(from, under);
    // Beneath a reference to an entity stand its declaration and, as the declaration's siblings,
    // the rest of the DTD. The library hands them over as the reference's children, so they count.
    // Only content may have no node.
    if (!isContent(from)) open.push_back({from.children, node});
  };

  add(domNode, parent);
  while (!open.empty()) {
    Level& level = open.back();
    if (level.next == nullptr) {
      open.pop_back();
      continue;
    }
    const xmlNode& child = *level.next;
    level.next = child.next;
    add(child, *level.parent);
  }
}

}  // namespace Orvane
