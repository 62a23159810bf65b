#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "output/data_table.h"
#include "output/track_set.h"
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

  // The hash of a node's name and id.
  static std::uint32_t hashOf(const MenuNode& node);

  // To be called when all is laid out, with the table that it is laid out in: enters the records of
  // tracks that are in runs there, and forgets what only finds records for further children.
  void endSearch(const DataTable& dataTable);

  // Finds the number of a child in the data table by its name and id.
  PositionIndex byNameAndId;

  // Of each track, by its number, the data record that its leaves share. As long as it has none: 0,
  // or, where something else in the tree has its id, kToBeSearched, and in `hashes`, which is empty
  // if there is no such track, what it is searched by. Until endSearch() it is also 0 where the
  // record is one of a run.
  static constexpr std::uint32_t kToBeSearched = 0xFFFFFFFF;
  LargeVector<std::uint32_t> records;
  LargeVector<std::uint32_t> hashes;
  TrackSet known;                       // tracks that have a record, or are to be searched
  std::size_t tracksWithoutRecord = 0;  // in no run either
};

}  // namespace Orvane
