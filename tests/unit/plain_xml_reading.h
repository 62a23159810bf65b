#pragma once

#include <libxml/xmlerror.h>

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "plain_xml_reader.h"
#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {

// What the plain rendering makes of a document: what the reader has to make of it.
struct PlainXmlReading {
  explicit PlainXmlReading(const std::string& path) {
    // libxml2 and libxml++ comment on some documents on standard error; only the plain rendering
    // lets them.
    xmlSetGenericErrorFunc(nullptr, silence);
    try {
      plainBuildTreeFromXml(path, *tree);
    } catch (const std::exception& error) {
      output = std::string("Exception caught: ") + error.what() + "\n";
    }
    xmlSetGenericErrorFunc(nullptr, nullptr);
  }

  std::vector<std::string> lines() const { return describeTree(*tree->getRoot()); }

  std::unique_ptr<MenuTree> tree = std::make_unique<MenuTree>();
  std::string output;

 private:
  static void silence(void* /*context*/, const char* /*format*/, ...) {}
};

}  // namespace Orvane::test
