#include "inventory/xml_reader.h"

#include <libxml++/document.h>
#include <libxml++/parsers/domparser.h>
#include <libxml/xmlerror.h>
#include <malloc.h>

#include <exception>
#include <iostream>
#include <string_view>
#include <utility>
#include <vector>

#include "inventory/xml_attribute.h"

namespace Orvane {

namespace {

// libxml2 writes its complaints to standard error besides raising them; the exception already says
// it all. (A handler for structured errors would do, but changes what the exceptions say.)
class SilencedXmlLibrary {
 public:
  SilencedXmlLibrary() { xmlSetGenericErrorFunc(nullptr, discard); }
  SilencedXmlLibrary(const SilencedXmlLibrary&) = delete;
  SilencedXmlLibrary& operator=(const SilencedXmlLibrary&) = delete;
  ~SilencedXmlLibrary() { xmlSetGenericErrorFunc(nullptr, nullptr); }

 private:
  static void discard(void* /*context*/, const char* /*format*/, ...) {}
};

bool hasTag(const xmlNode& element, std::string_view tag) {
  return reinterpret_cast<const char*>(element.name) == tag;
}

void fillFromElement(const xmlNode& element, MenuNode& node) {
  const XmlAttribute name(element, "name");
  const std::uint32_t recType = XmlAttribute(element, "rectype").numberOr(RecType::kPlainMenu);
  std::uint32_t nodeType = NODE_TYPE_MENU;
  std::uint32_t mediaId = 0;
  std::uint32_t rating = 0;
  std::uint32_t attribMask = 0;
  if (hasTag(element, "media")) {
    nodeType = NODE_TYPE_MEDIA;
    mediaId = XmlAttribute(element, "mediaid").numberOr(0);
    rating = XmlAttribute(element, "rating").numberOr(0);
    attribMask = XmlAttribute(element, "attribmask").numberOr(0);
  } else if (hasTag(element, "partition")) {
    attribMask = XmlAttribute(element, "partitionid").numberOr(0);
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

// Returns the new node, or nullptr where none is made.
MenuNode* addOne(const xmlNode& domNode, MenuNode& parent) {
  if (domNode.type == XML_TEXT_NODE && xmlIsBlankNode(&domNode)) return nullptr;
  return &parent.appendChild([&](MenuNode& node) {
    if (domNode.type == XML_ELEMENT_NODE) fillFromElement(domNode, node);
  });
}

void readDocument(const char* xmlFile, MenuTree& tree) {
  const SilencedXmlLibrary silenced;
  xmlpp::DomParser parser;
  parser.parse_file(xmlFile);
  if (!parser) return;
  xmlpp::Element* const rootElement = parser.get_document()->get_root_node();
  if (rootElement == nullptr) return;

  xmlNode& from = *rootElement->cobj();
  MenuNode& root = *tree.getRoot();
  const XmlAttribute name(from, "name");
  if (name.isPresent()) root.setName(name.text());
  for (const xmlNode* child = from.children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) addXmlNode(*child, root);
  }

  // The document's own end would first look at every node for a wrapper of libxml++. These have
  // none: only the root element was asked for.
  xmlFreeNodeList(std::exchange(from.children, nullptr));
  from.last = nullptr;
}

}  // namespace

void addXmlNode(const xmlNode& domNode, MenuNode& parent) {
  struct Level {
    const xmlNode* next;
    MenuNode* parent;
  };
  std::vector<Level> open;
  const auto add = [&](const xmlNode& from, MenuNode& under) {
    MenuNode* const node = addOne(from, under);
    // Beneath a reference to an entity stand its declaration and, as the declaration's siblings,
    // the rest of the DTD. The library hands them over as the reference's children, so they count.
    if (node != nullptr && !isContent(from)) open.push_back({from.children, node});
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

void buildTreeFromXml(const char* xmlFile, MenuTree& tree) {
  try {
    // A document is millions of small pieces, freed together. The C library would put them aside
    // and join them later in an order that takes as long as all else.
    ::mallopt(M_MXFAST, 0);
    readDocument(xmlFile, tree);
    // The output will need room, but not in pieces.
    ::malloc_trim(0);
  } catch (const std::exception& e) {
    std::cout << "Exception caught: " << e.what() << std::endl;
  }
}

}  // namespace Orvane
