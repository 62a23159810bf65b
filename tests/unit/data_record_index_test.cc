// Which tracks' leaves are looked for among the records of others.
#include "output/data_record_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "output/two_table_layout.h"
#include "tree/menu_tree.h"
#include "tree/track.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

constexpr std::uint32_t kToBeSearched = DataRecordIndex::kToBeSearched;

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
  TrackTable table_;
  MenuNode& menu_ = tree_.getRoot()->appendChild([](MenuNode&) {});
};

TEST_F(TracksInATree, OfIdsOfTheirOwnNeedNoSearch) {
  const DataRecordIndex index(tree_);
  EXPECT_THAT(index.records, ElementsAre(0U, 0U, 0U, 0U));
}

TEST_F(TracksInATree, OfIdsOfTheirOwnAreNotEnteredForOthersToFind) {
  DataRecordIndex index(tree_);
  TreeTable treeTable;
  DataTable dataTable;
  layoutChildren(&menu_, treeTable, dataTable, index);
  ASSERT_EQ(dataTable.size(), 3U);
  EXPECT_EQ(index.byNameAndId.findOrInsert(0, 99, [](std::uint32_t) { return true; }), 99U);
}

// Once all tracks have their records, leaves of theirs aren't looked at any more.
TEST_F(TracksInATree, AreCountedUntilTheyHaveARecord) {
  MenuNode& two = tree_.getRoot()->appendChild([](MenuNode&) {});
  for (const std::uint32_t number : {3U, 1U, 3U}) two.appendLeaf(table_, number);
  MenuNode& four = tree_.getRoot()->appendChild([](MenuNode&) {});
  for (const std::uint32_t number : {1U, 2U, 3U, 1U}) four.appendLeaf(table_, number);
  DataRecordIndex index(tree_);
  EXPECT_EQ(index.tracksWithoutRecord, 3U);
  TreeTable treeTable;
  DataTable dataTable;
  dataTable.add(tree_.root());
  layoutChildren(&two, treeTable, dataTable, index);
  EXPECT_EQ(index.tracksWithoutRecord, 1U);
  EXPECT_THAT(index.records, ElementsAre(0U, 2U, 0U, 1U));
  layoutChildren(&menu_, treeTable, dataTable, index);
  EXPECT_EQ(index.tracksWithoutRecord, 0U);
  EXPECT_THAT(index.records, ElementsAre(0U, 2U, 3U, 1U));
  index.records[1] = 0;  // would get another one
  layoutChildren(&four, treeTable, dataTable, index);
  EXPECT_EQ(dataTable.size(), 4U);
  EXPECT_EQ(treeTable.size(), 10U);
}

TEST_F(TracksInATree, KeepTheirRecordsWhenTheSearchEnds) {
  DataRecordIndex index(tree_);
  TreeTable treeTable;
  DataTable dataTable;
  dataTable.add(tree_.root());
  layoutChildren(tree_.getRoot(), treeTable, dataTable, index);
  index.endSearch(dataTable);
  EXPECT_EQ(index.hashes.capacity(), 0U);
  EXPECT_EQ(index.byNameAndId.findOrInsert(DataRecordIndex::hashOf(menu_), 99,
                                           [](std::uint32_t) { return true; }),
            99U);
  EXPECT_THAT(index.records, ElementsAre(0U, 2U, 3U, 4U));
}

TEST_F(TracksInATree, OfOneIdAreLookedFor) {
  tracks_[2].setMediaId(11);
  const DataRecordIndex index(tree_);
  EXPECT_THAT(index.records, ElementsAre(0U, kToBeSearched, 0U, kToBeSearched));
  EXPECT_EQ(index.hashes[3], index.hashes[1]);
}

TEST_F(TracksInATree, OfTheIdOfANodeAreLookedFor) {
  tree_.getRoot()->appendChild([](MenuNode& node) { node.setMediaId(12); });
  const DataRecordIndex index(tree_);
  EXPECT_THAT(index.records, ElementsAre(0U, 0U, kToBeSearched, 0U));
}

}  // namespace
}  // namespace Orvane::test
