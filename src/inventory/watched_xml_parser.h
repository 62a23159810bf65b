#pragma once

#include <libxml++/parsers/domparser.h>

namespace Orvane {

// libxml++'s parser, which ends with an error where libxml2 would not end: a DTD of a few lines can
// refer to its own parameter entities thousands of millions of times. libxml2 notices when there
// are ten times as many references as the document has bytes, and then goes round in circles for
// ever: this notices a little earlier.
class WatchedXmlParser : public xmlpp::DomParser {
 protected:
  void initialize_context() override;
};

}  // namespace Orvane
