#pragma once

#include "tree/menu_tree.h"

namespace Orvane {

// buildTreeFromXml of inventory/xml_reader.h.
using XmlReader = void (*)(const char* xmlFile, MenuTree& tree);

// The XML reader, which is in a module of its own, kXmlModule: loading the libraries behind it
// takes longer than building a small inventory from lists, so only runs that read XML do it. Throws
// std::runtime_error, which says what is amiss, when the module can't be loaded.
XmlReader loadXmlReader();

// The module's file, looked for where the program's run path says, and the function in it.
inline constexpr char kXmlModule[] = "libskeinmake-xml.so";
inline constexpr char kXmlModuleEntry[] = "skeinmakeBuildTreeFromXml";

}  // namespace Orvane
