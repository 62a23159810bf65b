// The XML mapping once more, as plainly as it can be put: recursion over libxml++'s own nodes. It
// is slow and trusts the document not to nest too deeply; what it is for is being compared with.
#pragma once

#include <libxml++/document.h>
#include <libxml++/nodes/contentnode.h>
#include <libxml++/nodes/element.h>
#include <libxml++/nodes/textnode.h>
#include <libxml++/parsers/domparser.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "tree/menu_tree.h"

namespace Orvane::test {

inline std::string plainTextOf(const xmlpp::Element& element, const char* attributeName) {
  const xmlpp::Attribute* const attribute = element.get_attribute(attributeName);
  return attribute == nullptr ? std::string() : attribute->get_value().raw();
}

inline std::uint32_t plainNumberOf(const xmlpp::Element& element, const char* attributeName,
                                   std::uint32_t absent) {
  if (element.get_attribute(attributeName) == nullptr) return absent;
  const long value = std::strtol(plainTextOf(element, attributeName).c_str(), nullptr, 10);
  return static_cast<std::uint32_t>(value);
}

inline void plainAddXmlNode(xmlpp::Node& domNode, MenuNode& parent) {
  const auto* const text = dynamic_cast<const xmlpp::TextNode*>(&domNode);
  if (text != nullptr && text->is_white_space()) return;

  auto owned = std::make_unique<MenuNode>();
  MenuNode& node = *owned;
  if (const auto* const element = dynamic_cast<const xmlpp::Element*>(&domNode)) {
    const std::string tag = element->get_name().raw();
    std::uint32_t nodeType = 1;
    std::uint32_t mediaId = 0;
    std::uint32_t rating = 0;
    std::uint32_t attribMask = 0;
    if (tag == "media") {
      nodeType = 2;
      mediaId = plainNumberOf(*element, "mediaid", 0);
      rating = plainNumberOf(*element, "rating", 0);
      attribMask = plainNumberOf(*element, "attribmask", 0);
    }
    if (tag == "partition") attribMask = plainNumberOf(*element, "partitionid", 0);
    node.setAll(nodeType, mediaId, plainTextOf(*element, "name"),
                plainNumberOf(*element, "rectype", 7), rating, attribMask);
  }
  parent.addChild(std::move(owned));

  if (dynamic_cast<const xmlpp::ContentNode*>(&domNode) != nullptr) return;
  for (xmlpp::Node* const child : domNode.get_children()) plainAddXmlNode(*child, node);
}

// Lets every exception through.
inline void plainBuildTreeFromXml(const std::string& xmlFile, MenuTree& tree) {
  xmlpp::DomParser parser;
  parser.parse_file(xmlFile);
  if (!parser) return;
  xmlpp::Element* const rootElement = parser.get_document()->get_root_node();
  if (rootElement == nullptr) return;
  MenuNode& root = *tree.getRoot();
  if (rootElement->get_attribute("name") != nullptr)
    root.setName(plainTextOf(*rootElement, "name"));
  for (xmlpp::Node* const child : rootElement->get_children()) {
    if (dynamic_cast<const xmlpp::Element*>(child) != nullptr) plainAddXmlNode(*child, root);
  }
}

}  // namespace Orvane::test
