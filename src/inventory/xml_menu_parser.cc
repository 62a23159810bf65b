#include "inventory/xml_menu_parser.h"

#include <libxml++/document.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <utility>

#include "inventory/xml_attribute.h"
#include "inventory/xml_shared_texts.h"

namespace Orvane {

namespace {

bool hasId(const xmlNode& element) {
  for (const xmlAttr* one = element.properties; one != nullptr; one = one->next) {
    if (one->atype == XML_ATTRIBUTE_ID) return true;
  }
  return false;
}

// Frees an element that has ended, but for one with an xml:id: the document knows it by that, so
// that a second one like it is an error. It stays behind the root element, for nobody to look at:
// the namespaces that it refers to go with the elements that declare them.
void release(xmlNode& element) {
  xmlUnlinkNode(&element);
  if (hasId(element)) {
    xmlAddChild(reinterpret_cast<xmlNode*>(element.doc), &element);
  } else {
    xmlFreeNode(&element);
  }
}

void freeChildren(xmlNode& element) {
  element.last = nullptr;
  xmlFreeNodeList(std::exchange(element.children, nullptr));
}

}  // namespace

void XmlMenuParser::initialize_context() {
  WatchedXmlParser::initialize_context();
  context_->sax->startElementNs = startElement;
  context_->sax->endElementNs = endElement;
}

// libxml++ keeps its parser there, for callbacks of its own.
XmlMenuParser& XmlMenuParser::of(void* context) {
  auto* const parser = static_cast<xmlpp::Parser*>(static_cast<xmlParserCtxt*>(context)->_private);
  return static_cast<XmlMenuParser&>(*parser);
}

// What is thrown must not pass through libxml2.
template <typename Action>
void XmlMenuParser::attempt(Action action) noexcept {
  try {
    action();
  } catch (...) {
    failure_ = std::current_exception();
    xmlStopParser(context_);
  }
}

void XmlMenuParser::startElement(void* context, const xmlChar* name, const xmlChar* prefix,
                                 const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                                 int attributeCount, int defaultCount, const xmlChar** attributes) {
  XmlMenuParser& self = of(context);
  const xmlParserCtxt& parser = *self.context_;
  if (parser.myDoc->intSubset != nullptr) {
    self.hasDtd_ = true;
    parser.sax->startElementNs = xmlSAX2StartElementNs;
    parser.sax->endElementNs = xmlSAX2EndElementNs;
  } else if (!self.open_.empty()) {
    const XmlStartTag tag(name, namespaceCount, attributeCount, attributes);
    const bool isPlain = tag.isPlain();
    self.attempt([&] {
      self.takeContent();
      if (isPlain) self.open_.push_back({XmlNodes::append(tag, *self.open_.back().node), false});
    });
    // The attributes are gone when the parser was stopped.
    if (isPlain || parser.disableSAX != 0) return;
  }
  xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                        defaultCount, attributes);
  // Where there was no memory for the element, the parser was stopped.
  if (self.hasDtd_ || parser.disableSAX != 0) return;
  self.attempt([&] { self.begin(*parser.node); });
}

void XmlMenuParser::endElement(void* context, const xmlChar* name, const xmlChar* prefix,
                               const xmlChar* uri) {
  XmlMenuParser& self = of(context);
  self.attempt([&] { self.takeContent(); });
  const bool isInDocument = self.open_.back().isInDocument;
  self.open_.pop_back();
  if (!isInDocument) return;
  xmlNode& element = *self.context_->node;
  xmlSAX2EndElementNs(context, name, prefix, uri);
  if (!self.open_.empty()) release(element);
}

void XmlMenuParser::begin(const xmlNode& element) {
  if (open_.empty()) {
    readRootName(element);
    open_.push_back({&root_, true});
  } else {
    open_.push_back({nodes_.append(element, *open_.back().node), true});
  }
}

// Takes what has come in the last element since the last one in it: there are no elements in that.
void XmlMenuParser::takeContent() {
  xmlNode& holder = *context_->node;
  if (open_.size() > 1) {
    for (const xmlNode* child = holder.children; child != nullptr; child = child->next) {
      nodes_.append(*child, *open_.back().node);
    }
  }
  freeChildren(holder);
}

void XmlMenuParser::readRootName(const xmlNode& rootElement) {
  XmlSharedTexts texts;
  const XmlAttribute name(rootElement, "name", XmlTextUse::kName, texts);
  if (name.isPresent()) rootName_ = name.text();
}

void XmlMenuParser::appendDocument(xmlNode& rootElement) {
  for (const xmlNode* child = rootElement.children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) nodes_.appendWhole(*child, root_);
  }
  // The document's own end would first look at every node for a wrapper of libxml++. These have
  // none: only the root element was asked for.
  freeChildren(rootElement);
}

void XmlMenuParser::read(const char* file) {
  try {
    parse_file(file);
  } catch (...) {
    if (failure_ == nullptr) {
      root_.keepChildren(childrenBefore_);
      throw;
    }
  }
  xmlNode* whole = nullptr;
  if (hasDtd_) {  // libxml2 itself has taken it all, so that nothing has failed here
    whole = get_document()->get_root_node()->cobj();
    readRootName(*whole);
  }
  if (rootName_) root_.setName(*rootName_);
  if (whole != nullptr) appendDocument(*whole);
  if (failure_ != nullptr) std::rethrow_exception(failure_);
}

}  // namespace Orvane
