#include "inventory/xml_reader.h"

#include <libxml/xmlerror.h>
#include <malloc.h>

#include <exception>
#include <iostream>

#include "inventory/xml_menu_parser.h"
#include "inventory/xml_nodes.h"

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

}  // namespace

void addXmlNode(const xmlNode& domNode, MenuNode& parent) {
  XmlNodes().appendWhole(domNode, parent);
}

void buildTreeFromXml(const char* xmlFile, MenuTree& tree) {
  try {
    // A document that is held whole is millions of small pieces, freed together. The C library
    // would put them aside and join them later in an order that takes as long as all else.
    ::mallopt(M_MXFAST, 0);
    {
      const SilencedXmlLibrary silenced;
      XmlMenuParser(*tree.getRoot()).read(xmlFile);
    }
    // The output will need room, but not in pieces.
    ::malloc_trim(0);
  } catch (const std::exception& e) {
    std::cout << "Exception caught: " << e.what() << std::endl;
  }
}

}  // namespace Orvane
