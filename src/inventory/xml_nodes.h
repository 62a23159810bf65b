#pragma once

#include <libxml/tree.h>

#include "inventory/xml_shared_texts.h"
#include "inventory/xml_start_tag.h"
#include "tree/menu_node.h"

namespace Orvane {

// Makes menu nodes of the nodes of one document. Throws std::bad_alloc; what was appended by then
// stays.
class XmlNodes {
 public:
  // Appends the node for `domNode` to `parent` and returns it, or nullptr for white-space text,
  // which gets none.
  MenuNode* append(const xmlNode& domNode, MenuNode& parent);

  // The same for an element of which there is only the start tag.
  static MenuNode* append(const XmlStartTag& tag, MenuNode& parent);

  // The same as the first with all that is beneath the node.
  void appendWhole(const xmlNode& domNode, MenuNode& parent);

 private:
  XmlSharedTexts texts_;
};

}  // namespace Orvane
