// Grows an arbitrary menu tree, writes it in both layouts, and compares the files with the plain
// rendering, byte by byte, with the tree itself, as a player reads them, and with what comes of the
// XML that the companion program turns them back into.
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <span>
#include <string>

#include "fail.h"
#include "inventory/xml_reader.h"
#include "inventory_comparison.h"
#include "output/one_table_writer.h"
#include "output/two_table_writer.h"
#include "plain/plain_comparison.h"
#include "plain/plain_writer.h"
#include "recording_buffer.h"
#include "served_file.h"
#include "skein/exit_status.h"
#include "test_support.h"
#include "tree_script.h"
#include "verb_runner.h"

namespace {

using namespace Orvane;

constexpr std::size_t kMostDamages = 4;

Bytes bytesOf(const std::string& file) {
  return {reinterpret_cast<const std::uint8_t*>(file.data()), file.size()};
}

std::string written(const MenuTree& tree, Layout layout) {
  test::RecordingBuffer buffer;
  if (layout == Layout::kTwoTable) {
    writeTwoTable(tree, buffer);
  } else {
    writeOneTable(tree, buffer);
  }
  return buffer.content;
}

void requireReadable(const MenuTree& tree, const std::string& file, Layout layout) {
  std::string reason;
  const auto view = InventoryView::open(bytesOf(file), reason);
  if (!view) fuzz::fail(reason);
  fuzz::require(view->layout() == layout, "it reads as the other layout");
  fuzz::requireEmpty(fuzz::differenceOf(tree, *view));
}

// XML that is said to be without loss must make the same file again.
void requireHonestXml(const std::string& file, Layout layout) {
  const VerbResult xml = decompileOf(bytesOf(file));
  if (xml.status != kStatusYes) return;
  const fuzz::ServedFile document = fuzz::ServedFile::whole(xml.out);
  const test::CapturedStream output(std::cout);
  MenuTree tree;
  buildTreeFromXml(document.path(), tree);
  fuzz::requireEmpty(output.text());
  fuzz::require(written(tree, layout) == file, "XML without loss makes another file");
}

// Puts some bytes that the input has for it anywhere into the file.
std::string damaged(std::string file, fuzz::ByteSource input, std::size_t damages) {
  for (; damages > 0; --damages) {
    const std::size_t at = input.byte() << 8 | input.byte();
    file[at % file.size()] = static_cast<char>(input.byte());
  }
  return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::ByteSource input({data, size});
  const std::size_t damages = input.byte() % (kMostDamages + 1);
  const fuzz::ByteSource damage = input;
  static_cast<void>(input.text(3 * damages));
  const fuzz::TreeScript script(input);
  const plain::PlainNode& plain = script.plainTree();
  fuzz::requireEmpty(plain::differenceOf(*script.tree().getRoot(), plain));

  for (const Layout layout : {Layout::kTwoTable, Layout::kOneTable}) {
    const std::string file = written(script.tree(), layout);
    fuzz::require(file == (layout == Layout::kTwoTable ? plain::plainTwoTableFile(plain)
                                                       : plain::plainOneTableFile(plain)),
                  "the file differs from the plain one");
    requireReadable(script.tree(), file, layout);
    fuzz::require(checkOf(bytesOf(file)).status == kStatusYes, "the file is not sound");
    requireHonestXml(file, layout);
    if (damages != 0) requireHonestXml(damaged(file, damage, damages), layout);
  }
  return 0;
}
