#include "inventory/xml_reader.h"

#include <libxml++/document.h>
#include <libxml++/parsers/domparser.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
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

// A DTD of a few lines can refer to its own parameter entities thousands of millions of times.
// libxml2 notices when there are ten times as many references as the document has bytes, and then
// goes round in circles for ever: this notices a little earlier.
class WatchedParser : public xmlpp::DomParser {
 protected:
  void initialize_context() override {
    xmlpp::DomParser::initialize_context();
    context_->sax->getParameterEntity = getParameterEntity;
  }

 private:
  static xmlEntityPtr getParameterEntity(void* context, const xmlChar* name) {
    constexpr unsigned long kHarmless = 8000;
    constexpr unsigned long kPerByte = 8;
    auto& parser = *static_cast<xmlParserCtxt*>(context);
    const xmlParserInput& document = *parser.inputTab[0];
    const auto bytesRead =
        document.consumed + static_cast<unsigned long>(document.cur - document.base);
    if (parser.nbentities < kHarmless || parser.nbentities < kPerByte * bytesRead) {
      return xmlSAX2GetParameterEntity(context, name);
    }
    if (parser.wellFormed == 1) report(parser, document);
    xmlStopParser(&parser);
    return nullptr;
  }

  static void report(xmlParserCtxt& parser, const xmlParserInput& document) {
    parser.wellFormed = 0;
    xmlResetError(&parser.lastError);
    parser.lastError.domain = XML_FROM_PARSER;
    parser.lastError.code = XML_ERR_ENTITY_LOOP;
    parser.lastError.level = XML_ERR_FATAL;
    parser.lastError.message = xmlMemStrdup("Too many references to parameter entities\n");
    parser.lastError.file =
        document.filename == nullptr ? nullptr : xmlMemStrdup(document.filename);
    parser.lastError.line = document.line;
    parser.lastError.int2 = document.col;
  }
};

bool hasTag(const xmlNode& element, std::string_view tag) {
  return reinterpret_cast<const char*>(element.name) == tag;
}

void fillFromElement(const xmlNode& element, MenuNode& node, XmlSharedTexts& texts) {
  const auto number = [&](const char* attribute, std::uint32_t absent) {
    return XmlAttribute(element, attribute, XmlTextUse::kNumber, texts).numberOr(absent);
  };
  const XmlAttribute name(element, "name", XmlTextUse::kName, texts);
  const std::uint32_t recType = number("rectype", RecType::kPlainMenu);
  std::uint32_t nodeType = NODE_TYPE_MENU;
  std::uint32_t mediaId = 0;
  std::uint32_t rating = 0;
  std::uint32_t attribMask = 0;
  if (hasTag(element, "media")) {
    nodeType = NODE_TYPE_MEDIA;
    mediaId = number("mediaid", 0);
    rating = number("rating", 0);
    attribMask = number("attribmask", 0);
  } else if (hasTag(element, "partition")) {
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

// Returns the new node, or nullptr where none is made.
MenuNode* addOne(const xmlNode& domNode, MenuNode& parent, XmlSharedTexts& texts) {
  if (domNode.type == XML_TEXT_NODE && xmlIsBlankNode(&domNode)) return nullptr;
  return &parent.appendChild([&](MenuNode& node) {
    if (domNode.type == XML_ELEMENT_NODE) fillFromElement(domNode, node, texts);
  });
}

void addWithTexts(const xmlNode& domNode, MenuNode& parent, XmlSharedTexts& texts) {
  struct Level {
    const xmlNode* next;
    MenuNode* parent;
  };
  std::vector<Level> open;
  const auto add = [&](const xmlNode& from, MenuNode& under) {
    MenuNode* const node = addOne(from, under, texts);
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

void readDocument(const char* xmlFile, MenuTree& tree) {
  const SilencedXmlLibrary silenced;
  WatchedParser parser;
  parser.parse_file(xmlFile);
  if (!parser) return;
  xmlpp::Element* const rootElement = parser.get_document()->get_root_node();
  if (rootElement == nullptr) return;

  xmlNode& from = *rootElement->cobj();
  MenuNode& root = *tree.getRoot();
  XmlSharedTexts texts;
  const XmlAttribute name(from, "name", XmlTextUse::kName, texts);
  if (name.isPresent()) root.setName(name.text());
  for (const xmlNode* child = from.children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) addWithTexts(*child, root, texts);
  }

  // The document's own end would first look at every node for a wrapper of libxml++. These have
  // none: only the root element was asked for.
  xmlFreeNodeList(std::exchange(from.children, nullptr));
  from.last = nullptr;
}

}  // namespace

void addXmlNode(const xmlNode& domNode, MenuNode& parent) {
  XmlSharedTexts texts;
  addWithTexts(domNode, parent, texts);
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
