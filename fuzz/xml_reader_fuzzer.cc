// Gives an XML document to the reader and to its plain rendering over libxml++'s own nodes, which
// must make the same tree, or fail with the same message.
#include <libxml/xmlerror.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include "fail.h"
#include "inventory/xml_reader.h"
#include "plain_xml_reader.h"
#include "served_file.h"
#include "test_support.h"

namespace {

using namespace Orvane;

// The plain rendering takes time with a power of the document's length.
constexpr std::size_t kLongest = 16384;

struct Reading {
  MenuTree tree;
  std::string said;  // on standard output
};

void discard(void* /*context*/, const char* /*format*/, ...) {}

// libxml++ says on std::cerr what it has no class for.
void readPlainly(const char* path, Reading& reading) {
  const test::CapturedStream ignored(std::cerr);
  xmlSetGenericErrorFunc(nullptr, discard);
  try {
    test::plainBuildTreeFromXml(path, reading.tree);
  } catch (const std::exception& error) {
    reading.said = std::string("Exception caught: ") + error.what() + "\n";
  }
  xmlSetGenericErrorFunc(nullptr, nullptr);
}

void read(const char* path, Reading& reading) {
  const test::CapturedStream output(std::cout);
  const test::CapturedStream complaints(std::cerr);
  buildTreeFromXml(path, reading.tree);
  reading.said = output.text();
  fuzz::require(complaints.text().empty(), "the reader writes to standard error");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > kLongest) return 0;
  const std::string_view document(reinterpret_cast<const char*>(data), size);
  const fuzz::ServedFile file = fuzz::ServedFile::whole(document);

  Reading expected;
  readPlainly(file.path(), expected);
  Reading actual;
  read(file.path(), actual);
  fuzz::require(actual.said == expected.said, "the messages differ");
  fuzz::require(
      test::describeTree(*actual.tree.getRoot()) == test::describeTree(*expected.tree.getRoot()),
      "the trees differ");
  return 0;
}
