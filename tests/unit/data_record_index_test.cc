// Which tracks' leaves are looked for among the records of others.
#include "output/data_record_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

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

  // The record of whatever is known by that hash, which is 99 if nothing is.
  std::uint32_t enterAnother(DataRecordIndex& index, std::uint32_t hash) const {
    const auto asAny = [](const DataRecordIndex::Entry&) { return true; };
    return index.byNameAndId.findOrInsert({hash, 99, tree_.root()}, asAny).record;
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
  for (const Track& track : tracks_) {
    MenuNode leaf;
    leaf.becomeLeafOf(track);
    EXPECT_EQ(enterAnother(index, DataRecordIndex::hashOf(leaf)), 99U);
  }
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
  dataTable.appendLeaf(tree_.root());
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
  dataTable.appendLeaf(tree_.root());
  layoutChildren(tree_.getRoot(), treeTable, dataTable, index);
  index.endSearch(dataTable);
  EXPECT_EQ(index.hashes.capacity(), 0U);
  EXPECT_EQ(enterAnother(index, DataRecordIndex::hashOf(menu_)), 99U);
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

TEST(DataRecords, AreSharedByNodesOfOneIdWhoseNamesAgreeInWhatIsStored) {
  constexpr std::string_view kLong =
      "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdefAnd more";
  const auto areAlike = [](std::uint32_t id, std::string_view name, std::uint32_t otherId,
                           std::string_view otherName) {
    MenuNode node;
    node.setMediaId(id);
    node.setBorrowedName(name);
    MenuNode other;
    other.setMediaId(otherId);
    other.setBorrowedName(otherName);
    const bool result = DataRecordIndex::areAlike(node, other);
    EXPECT_EQ(DataRecordIndex::areAlike(other, node), result);
    EXPECT_TRUE(!result || DataRecordIndex::hashOf(node) == DataRecordIndex::hashOf(other));
    return result;
  };
  const std::string copy(kLong);
  EXPECT_TRUE(areAlike(1, kLong, 1, kLong));
  EXPECT_TRUE(areAlike(1, kLong, 1, copy));
  EXPECT_FALSE(areAlike(1, kLong, 2, kLong));
  EXPECT_FALSE(areAlike(1, kLong.substr(0, 5), 1, kLong.substr(0, 4))) << "from one place";
  EXPECT_FALSE(areAlike(1, "name", 1, "nama"));
  EXPECT_TRUE(areAlike(1, {"a\0b", 3}, 1, {"a\0c", 3})) << "they end with a zero byte";
  EXPECT_TRUE(areAlike(1, {"a\0b", 3}, 1, "a"));
  EXPECT_FALSE(areAlike(1, {"a\0b", 3}, 1, "ab"));
  EXPECT_TRUE(areAlike(0, "", 0, ""));
}

// Names that grow beyond 64 bytes in front of what was there.
TEST(DataRecords, AreSharedByNodesWhoseNamesDifferBehindWhatIsStored) {
  MenuNode node;
  node.setName("12345");
  MenuNode other;
  other.setName("12346");
  for (MenuNode* const each : {&node, &other}) each->setName(std::string(70, 'x'));
  ASSERT_NE(node.getName(), other.getName());
  EXPECT_FALSE(DataRecordIndex::areAlike(node, MenuNode()));
  EXPECT_TRUE(DataRecordIndex::areAlike(node, other)) << "62 bytes and 12";
  MenuNode third;
  third.setName("1x345");
  third.setName(std::string(70, 'x'));
  EXPECT_FALSE(DataRecordIndex::areAlike(node, third)) << "the 64th byte differs";
}

}  // namespace
}  // namespace Orvane::test
