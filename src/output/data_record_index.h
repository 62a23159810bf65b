#pragma once

#include <cstdint>
#include <string_view>

#include "tree/huge_pages.h"
#include "tree/menu_tree.h"
#include "tree/position_index.h"

namespace Orvane {

// Data records by what they are shared by, an id and a name. The root's record is never entered, so
// nothing shares it; and a track with an id that nothing else in its tree has needs no search.
struct DataRecordIndex {
  // For the children that the tree has now. If it has a track table, what comes later may miss the
  // record that it ought to share with leaves of tracks.
  explicit DataRecordIndex(const MenuTree& tree);

  // What of a node's name is compared.
  static std::string_view comparedName(const MenuNode& node);

  // The hash of a node's name and id; never 0.
  static std::uint32_t hashOf(const MenuNode& node);

  // Forgets what only finds records for further children.
  void endSearch() {
    byNameAndId.clear();
    release(hashes);
  }

  PositionIndex byNameAndId;

  // Of each track's leaves, by its number: the hash, 0 where nothing else in the tree has its id,
  // and the data record that they share, 0 where there is none yet.
  LargeVector<std::uint32_t> hashes;
  LargeVector<std::uint32_t> records;
  std::size_t tracksWithoutRecord = 0;
};

}  // namespace Orvane
