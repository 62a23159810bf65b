// Runs the whole program on two list files, in both layouts, and compares each byte of the output
// with the plain rendering of the same. Flags of the input: 1 with a partition for trial, 2 no
// tracks file, 4 no playlists file, 8 the root is named by the input's word.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "cli/run.h"
#include "fail.h"
#include "list_input.h"
#include "plain/plain_menu.h"
#include "plain/plain_writer.h"
#include "test_support.h"

namespace {

using namespace Orvane;

// The options of a run, and the tree that should come of them.
struct Case {
  explicit Case(const fuzz::ListInput& input)
      : withPartition((input.flags & 1) != 0),
        isNamed((input.flags & 8) != 0),
        rootName(input.word.substr(0, input.word.find('\0'))),
        lists(input, fuzz::ServedLists::Reads::kWhole) {
    if ((input.flags & 2) != 0) lists.hideTracks();
    if ((input.flags & 4) != 0) lists.hidePlaylists();

    plain = lists.readPlainly(inventory, true);
    if (isNamed) plain::plainSetName(*root, rootName);
    plain::plainBuildMenu(inventory, *root);
    plain::plainSortTree(*root);
    if (!withPartition) return;
    auto partition = std::make_unique<plain::PlainNode>();
    partition->nodeType = 1;
    partition->name = "Try & Buy";
    partition->recType = 7;
    partition->attribMask = static_cast<std::uint32_t>(partitionId());
    root->children.push_back(std::move(partition));
  }

  std::int32_t partitionId() const {
    return static_cast<std::int32_t>(std::strtol(rootName.c_str(), nullptr, 10));
  }

  bool withPartition;
  bool isNamed;
  std::string rootName;
  fuzz::ServedLists lists;
  plain::PlainInventory inventory;
  plain::PlainReading plain;
  std::unique_ptr<plain::PlainNode> root = plain::plainRoot();
};

// The file that a run writes over another one.
std::string written(const Case& of, std::int32_t tables) {
  const fuzz::ServedFile file = fuzz::ServedFile::whole("what was there before");
  Options options;
  options.tables = tables;
  options.xmlMode = false;
  options.tracksFile = of.lists.tracksPath();
  options.playlistsFile = of.lists.playlistsPath();
  options.outputFile = file.path();
  options.rootName = of.isNamed ? of.rootName.c_str() : nullptr;
  options.tryAndBuy = of.withPartition;
  options.tryAndBuyPartitionId = of.partitionId();

  const test::CapturedStream output(std::cout);
  const test::CapturedStream complaints(std::cerr);
  run(options);
  fuzz::requireSaid(of.plain, output.text(), complaints.text());
  return file.content();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Case expected(fuzz::ListInput({data, size}));
  fuzz::require(written(expected, 2) == plain::plainTwoTableFile(*expected.root),
                "the two-table file differs");
  fuzz::require(written(expected, 1) == plain::plainOneTableFile(*expected.root),
                "the one-table file differs");
  return 0;
}
