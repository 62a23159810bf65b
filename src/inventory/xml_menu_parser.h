#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "inventory/watched_xml_parser.h"
#include "inventory/xml_nodes.h"
#include "tree/menu_node.h"

namespace Orvane {

// Parses a document and makes menu nodes of what is beneath its root element.
//
// Each element becomes a node as soon as it begins, mostly by its start tag alone, and other
// content at the next tag, so that the document as a whole, which takes several times the memory of
// its nodes, need not be there. But a document with a DTD is read whole first: what its entities
// stand for is known at the end.
class XmlMenuParser : public WatchedXmlParser {
 public:
  // Nodes are appended to `root`, which must outlive the parser.
  explicit XmlMenuParser(MenuNode& root) : root_(root), childrenBefore_(root.childCount()) {}

  // To be called once. Throws as parse_file() does: `root` is as it was. When memory for nodes runs
  // out it throws std::bad_alloc: `root` has its name and what was appended by then.
  void read(const char* file);

 protected:
  void initialize_context() override;

 private:
  static XmlMenuParser& of(void* context);
  static void startElement(void* context, const xmlChar* name, const xmlChar* prefix,
                           const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                           int attributeCount, int defaultCount, const xmlChar** attributes);
  static void endElement(void* context, const xmlChar* name, const xmlChar* prefix,
                         const xmlChar* uri);

  template <typename Action>
  void attempt(Action action) noexcept;
  void begin(const xmlNode& element);
  void takeContent();
  void readRootName(const xmlNode& rootElement);
  void appendDocument(xmlNode& rootElement);

  MenuNode& root_;
  const std::size_t childrenBefore_;
  XmlNodes nodes_;
  // The tree's root gets its name last: should the document not parse, it keeps the one it has.
  std::optional<std::string> rootName_;

  // An element that has begun and not ended.
  struct Open {
    MenuNode* node;
    bool isInDocument;  // else its start tag was enough
  };
  // The root element first, which is always in the document. What libxml2 finds in one that isn't,
  // it puts into the last one that is.
  std::vector<Open> open_;

  bool hasDtd_ = false;         // known once the root element begins
  std::exception_ptr failure_;  // what ended the parsing from here
};

}  // namespace Orvane
