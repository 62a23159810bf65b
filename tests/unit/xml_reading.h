#pragma once

#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/xml_reader.h"
#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {

// What reading one document came to.
struct XmlReading {
  std::unique_ptr<MenuTree> tree = std::make_unique<MenuTree>();
  std::string output;  // what the reader said on standard output

  std::vector<std::string> lines() const { return describeTree(*tree->getRoot()); }
};

inline XmlReading readXmlFile(const std::string& path) {
  XmlReading reading;
  const CapturedStream output(std::cout);
  buildTreeFromXml(path.c_str(), *reading.tree);
  reading.output = output.text();
  return reading;
}

inline XmlReading readXml(std::string_view document) {
  const TempDir dir;
  const std::string path = dir / "menu.xml";
  writeFile(path, document);
  return readXmlFile(path);
}

// `depth` elements, each but the first within the one before it.
inline std::string nestedDocument(int depth) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += "<m>";
  for (int i = 0; i < depth; ++i) text += "</m>";
  return text;
}

inline std::string repeated(std::string_view text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

}  // namespace Orvane::test
