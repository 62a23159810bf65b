// Which tracks' leaves are looked for among the records of others.
#include "output/data_record_index.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "output/two_table_layout.h"
#include "tree/menu_tree.h"
#include "tree/track.h"

namespace Orvane::test {
namespace {

class TracksInATree : public ::testing::Test {
 protected:
  TracksInATree() {
    tree_.setTrackTable(table_);
    for (std::uint32_t number = 1; number <= tracks_.size(); ++number) {
      Track& track = tracks_[number - 1];
      track.setTitle("title");
      track.setMediaId(10 + number);
      table_.push_back(&track);
      menu_.appendLeaf(table_, number);
    }
  }

  MenuTree tree_;
  std::array<Track, 3> tracks_;
  TrackTable table_ = {nullptr};
  MenuNode& menu_ = tree_.getRoot()->appendChild([](MenuNode&) {});
};

TEST_F(TracksInATree, OfIdsOfTheirOwnNeedNoSearch) {
  const DataRecordIndex index(tree_);
  ASSERT_EQ(index.byTrack.size(), 4U);
  for (const DataRecordIndex::OfTrack& track : index.byTrack) EXPECT_EQ(track.hash, 0U);
}

TEST_F(TracksInATree, OfIdsOfTheirOwnAreNotEnteredForOthersToFind) {
  DataRecordIndex index(tree_);
  TreeTable treeTable;
  DataTable dataTable;
  layoutChildren(&menu_, treeTable, dataTable, index);
  ASSERT_EQ(dataTable.size(), 3U);
  EXPECT_EQ(index.byNameAndId.findOrInsert(0, 99, [](std::uint32_t) { return true; }), 99U);
}

TEST_F(TracksInATree, OfOneIdAreLookedFor) {
  tracks_[2].setMediaId(11);
  const DataRecordIndex index(tree_);
  EXPECT_NE(index.byTrack[1].hash, 0U);
  EXPECT_EQ(index.byTrack[2].hash, 0U);
  EXPECT_EQ(index.byTrack[3].hash, index.byTrack[1].hash);
}

TEST_F(TracksInATree, OfTheIdOfANodeAreLookedFor) {
  tree_.getRoot()->appendChild([](MenuNode& node) { node.setMediaId(12); });
  const DataRecordIndex index(tree_);
  EXPECT_EQ(index.byTrack[1].hash, 0U);
  EXPECT_NE(index.byTrack[2].hash, 0U);
  EXPECT_EQ(index.byTrack[3].hash, 0U);
}

}  // namespace
}  // namespace Orvane::test
