#pragma once

#include <cstddef>
#include <cstdint>

#include "output/data_table.h"
#include "output/track_set.h"
#include "tree/child.h"
#include "tree/hash_index.h"
#include "tree/huge_pages.h"
#include "tree/menu_tree.h"

namespace Orvane {

// Data records by what they are shared by, an id and a name. The root's record is never entered, so
// nothing shares it; and a track with an id that nothing else in its tree has needs no search.
struct DataRecordIndex {
  // For the children that the tree has now. If it has a track table, what comes later may miss the
  // record that it ought to share with leaves of tracks.
  explicit DataRecordIndex(const MenuTree& tree);

  // The hash of what areAlike() compares.
  static std::uint32_t hashOf(const MenuNode& node);

  // Whether two nodes are to share a record: their ids are equal, and of their names what is
  // stored, up to a zero byte.
  static bool areAlike(const MenuNode& a, const MenuNode& b);

  // To be called when all is laid out, with the table that it is laid out in: enters the records of
  // tracks that are in runs there, and forgets what only finds records for further children.
  void endSearch(const DataTable& dataTable);

  // The data record of a name and an id.
  struct Entry {
    std::uint32_t hash = 0;
    std::uint32_t record = 0;
    Child child = Child(nullptr);  // that the record is filled from: has the name and the id

    bool isFree() const { return child.isNode() && child.node() == nullptr; }
  };
  HashIndex<Entry> byNameAndId;

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
