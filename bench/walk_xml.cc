// Reads an XML file with libxml++, visits every node and every attribute, frees it all: what a
// program pays that is written on libxml++'s own nodes and builds nothing from them.
#include <libxml++/libxml++.h>

#include <cstddef>
#include <exception>
#include <iostream>
#include <vector>

namespace {

struct Seen {
  std::size_t elements = 0;
  std::size_t attributes = 0;
};

Seen visit(const xmlpp::Node& root) {
  Seen seen;
  std::vector<const xmlpp::Node*> open = {&root};
  while (!open.empty()) {
    const xmlpp::Node& node = *open.back();
    open.pop_back();
    for (const xmlpp::Node* child : node.get_children()) open.push_back(child);
    if (const auto* element = dynamic_cast<const xmlpp::Element*>(&node)) {
      ++seen.elements;
      seen.attributes += element->get_attributes().size();
    }
  }
  return seen;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: bench_walk_xml FILE\n";
    return 64;
  }
  try {
    xmlpp::DomParser parser;
    parser.parse_file(argv[1]);
    const Seen seen = visit(*parser.get_document()->get_root_node());
    std::cout << seen.elements << " elements, " << seen.attributes << " attributes\n";
  } catch (const std::exception& error) {
    std::cerr << "bench_walk_xml: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
