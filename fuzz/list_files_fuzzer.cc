// Gives two list files to the reader and to its plain rendering, which must fill the same inventory
// and say the same. Flags of the input: 1 no playlist ids, 2 no tracks file, 4 no playlists file,
// 8 files that come in small pieces.
#include <cstddef>
#include <cstdint>
#include <iostream>

#include "fail.h"
#include "inventory/list_files.h"
#include "list_input.h"
#include "plain/plain_comparison.h"
#include "test_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace Orvane;
  const fuzz::ListInput input({data, size});
  const bool withPlaylistIds = (input.flags & 1) == 0;
  const bool inPieces = (input.flags & 8) != 0;
  using Reads = fuzz::ServedLists::Reads;
  fuzz::ServedLists lists(input, inPieces ? Reads::kInPieces : Reads::kWhole);
  if ((input.flags & 2) != 0) lists.hideTracks();
  if ((input.flags & 4) != 0) lists.hidePlaylists();

  TrackManager manager;
  plain::PlainInventory inventory;
  const plain::PlainReading plain = lists.readPlainly(inventory, withPlaylistIds);
  {
    const test::CapturedStream output(std::cout);
    const test::CapturedStream complaints(std::cerr);
    readInventoryFiles(manager, lists.tracksPath(), lists.playlistsPath(), withPlaylistIds);
    fuzz::requireSaid(plain, output.text(), complaints.text());
  }
  fuzz::requireEmpty(plain::differenceOf(manager, inventory));
  return 0;
}
