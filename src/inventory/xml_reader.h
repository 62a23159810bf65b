#pragma once

#include <libxml/tree.h>

#include "tree/menu_tree.h"

namespace Orvane {

// Reads the XML menu tree in the file into `tree`: every element below the document's root element
// becomes a node, nested and ordered as in the document; the root element's "name" renames the
// tree's root by MenuNode::setName. docs/xml-format.md describes the format.
//
// Never throws. When the file can't be read or parsed, or memory runs out, "Exception caught: ",
// the exception's text and a line end go to standard output, and the tree keeps what it has by
// then: a document that doesn't parse leaves it as it was.
//
// For the whole process this turns malloc's fast bins off, gives what malloc has free back to the
// system, and turns libxml2's handler of generic errors back to its default.
void buildTreeFromXml(const char* xmlFile, MenuTree& tree);

// Hangs the nodes for `domNode` and all that is beneath it under `parent`. Unlike the root
// element's children, which are taken only when they are elements, everything in here but
// white-space text gets a node: comments, text and the like one with all defaults.
void addXmlNode(const xmlNode& domNode, MenuNode& parent);

}  // namespace Orvane
