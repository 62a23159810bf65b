// The one function that the module of the XML reader shows.
#include "inventory/xml_reader.h"

extern "C" void skeinmakeBuildTreeFromXml(const char* xmlFile, Orvane::MenuTree& tree);

void skeinmakeBuildTreeFromXml(const char* xmlFile, Orvane::MenuTree& tree) {
  Orvane::buildTreeFromXml(xmlFile, tree);
}
