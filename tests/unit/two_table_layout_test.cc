#include "output/two_table_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "output/linked_table_reader.h"
#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "test_support.h"
#include "two_tables.h"

namespace Orvane {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::addMedia;
using test::addMenu;
using test::addNode;
using test::Links;
using test::RecordingBuffer;
using test::Tables;
using ::testing::ElementsAre;

constexpr std::uint32_t kNone = 0xFFFFFFFF;

class TwoTableLayout : public ::testing::Test {
 protected:
  Tables written() {
    RecordingBuffer buffer;
    EXPECT_TRUE(writeTwoTable(tree_, buffer));
    return Tables(buffer.content);
  }

  MenuTree tree_;
  MenuNode& root_ = *tree_.getRoot();
};

TEST_F(TwoTableLayout, RootThatIsAMediaLeafHidesItsChildren) {
  root_.setNodeType(NODE_TYPE_MEDIA);
  addMedia(root_, 1, "hidden");
  const Tables tables = written();
  EXPECT_THAT(tables.tree, ElementsAre(Links{kNone, 1, 0}));
  EXPECT_EQ(tables.data.size(), 1U);
}

TEST_F(TwoTableLayout, FamiliesStandTogetherDepthFirst) {
  MenuNode& a = addMenu(root_, 0, "a");
  MenuNode& b = addMenu(root_, 0, "b");
  MenuNode& a1 = addMenu(a, 0, "a1");
  addMedia(a, 0, "a2");
  addMedia(a1, 0, "a11");
  addMedia(a1, 0, "a12");
  addMedia(b, 0, "b1");
  const Tables tables = written();
  EXPECT_THAT(tables.treeNames(), ElementsAre("root", "a", "b", "a1", "a2", "a11", "a12", "b1"));
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 2, 0}, Links{3, 2, 1}, Links{7, 1, 2},
                                       Links{5, 2, 3}, Links{kNone, 0, 4}, Links{kNone, 0, 5},
                                       Links{kNone, 0, 6}, Links{kNone, 0, 7}));
}

TEST_F(TwoTableLayout, EmptyMenuPointsWhereItsChildrenWouldStand) {
  addMenu(root_, 0, "empty first");
  MenuNode& full = addMenu(root_, 0, "full");
  addMenu(root_, 0, "empty last");
  addMedia(full, 0, "x");
  addMedia(full, 0, "y");
  EXPECT_THAT(written().tree, ElementsAre(Links{1, 3, 0}, Links{4, 0, 1}, Links{4, 2, 2},
                                          Links{6, 0, 3}, Links{kNone, 0, 4}, Links{kNone, 0, 5}));
}

TEST_F(TwoTableLayout, NodeWithoutATypeIsAMenu) {
  MenuNode& node = addNode(root_, 0, 0, "star", RecType::kOneStar);
  addMedia(node, 1, "x");
  addNode(root_, 3, 0, "odd");
  EXPECT_THAT(written().tree,
              ElementsAre(Links{1, 2, 0}, Links{3, 1, 1}, Links{4, 0, 2}, Links{kNone, 0, 3}));
}

TEST_F(TwoTableLayout, MediaLeafCountsChildrenThatAreNotWritten) {
  MenuNode& leaf = addMedia(root_, 1, "leaf");
  addMedia(leaf, 2, "hidden");
  addMenu(leaf, 3, "hidden too");
  const Tables tables = written();
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 1, 0}, Links{kNone, 2, 1}));
  EXPECT_THAT(tables.names, ElementsAre("root", "leaf"));
}

TEST_F(TwoTableLayout, SharesDataOnlyWhereIdAndNameAreEqual) {
  addMedia(root_, 1, "same");
  addMedia(root_, 1, "other");
  addMedia(root_, 2, "same");
  addMedia(root_, 1, "same");
  addMedia(root_, 1, "Same");
  addMedia(root_, 2, "same");
  const Tables tables = written();
  EXPECT_THAT(tables.names, ElementsAre("root", "same", "other", "same", "Same"));
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 6, 0}, Links{kNone, 0, 1}, Links{kNone, 0, 2},
                                       Links{kNone, 0, 3}, Links{kNone, 0, 1}, Links{kNone, 0, 4},
                                       Links{kNone, 0, 3}));
}

TEST_F(TwoTableLayout, SharedDataIsThatOfTheFirstWhateverTheKind) {
  addNode(root_, NODE_TYPE_MENU, 4, "x", 5, 6, 7);
  addNode(root_, NODE_TYPE_MEDIA, 4, "x", 50, 60, 70);
  addNode(root_, 0, 4, "x");
  const Tables tables = written();
  EXPECT_THAT(tables.tree,
              ElementsAre(Links{1, 3, 0}, Links{4, 0, 1}, Links{kNone, 0, 1}, Links{4, 0, 1}));
  ASSERT_EQ(tables.data.size(), 2U);
  EXPECT_EQ(tables.data[1].substr(68), "\x05\x06\x07\x00"sv);
}

TEST_F(TwoTableLayout, RootSharesItsDataWithNobody) {
  addMenu(root_, 0, "root");
  addMenu(root_, 0, "root");
  const Tables tables = written();
  EXPECT_THAT(tables.names, ElementsAre("root", "root"));
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 2, 0}, Links{3, 0, 1}, Links{3, 0, 1}));
}

TEST_F(TwoTableLayout, FirstOccurrenceIsInTableOrder) {
  // "x" under "a" is reached before the one under "b", though both come after the latter's parent.
  MenuNode& a = addMenu(root_, 0, "a");
  MenuNode& b = addMenu(root_, 0, "b");
  addNode(b, NODE_TYPE_MEDIA, 9, "x", 2);
  addNode(a, NODE_TYPE_MEDIA, 9, "x", 1);
  const Tables tables = written();
  EXPECT_THAT(tables.names, ElementsAre("root", "a", "b", "x"));
  EXPECT_EQ(tables.data[3][68], 1);
}

TEST_F(TwoTableLayout, NamesAreComparedUpToTheirFirstZeroByte) {
  addMedia(root_, 1, "ab\0first"sv);
  addMedia(root_, 1, "ab\0second"sv);
  addMedia(root_, 1, "ab");
  addMedia(root_, 1, "a\0b"sv);
  addMedia(root_, 1, "abc");
  const Tables tables = written();
  ASSERT_EQ(tables.data.size(), 4U);
  EXPECT_EQ(tables.data[1].substr(4, 64), "ab\0first"s + std::string(56, '\0'));
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 5, 0}, Links{kNone, 0, 1}, Links{kNone, 0, 1},
                                       Links{kNone, 0, 1}, Links{kNone, 0, 2}, Links{kNone, 0, 3}));
}

TEST_F(TwoTableLayout, NamesAreComparedOverTheirFirst64Bytes) {
  const std::string prefix(62, 'p');
  for (const char* old : {"xyA", "xyB", "xz"}) addMedia(root_, 1, old).setName(prefix + "long");
  addMedia(root_, 1, prefix + "xy");
  const Tables tables = written();
  EXPECT_THAT(tables.names, ElementsAre("root", prefix + "xy", prefix + "xz"));
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 4, 0}, Links{kNone, 0, 1}, Links{kNone, 0, 1},
                                       Links{kNone, 0, 2}, Links{kNone, 0, 1}));
}

TEST_F(TwoTableLayout, LeavesOfTracksShareAsOthersDo) {
  Track one;
  one.setTitle("x");
  one.setMediaId(1);
  Track two;
  two.setTitle("x");
  two.setMediaId(2);
  TrackTable tracks;
  test::addTracks(tracks, {&one, &two, &one});
  tree_.setTrackTable(tracks);
  const auto addLeafNode = [&](const Track& track) -> MenuNode& {
    return root_.appendChild([&](MenuNode& leaf) { leaf.becomeLeafOf(track); });
  };
  addMedia(root_, 1, "x");
  for (const std::uint32_t number : {1U, 3U}) root_.appendLeaf(tracks, number);
  addLeafNode(one);
  root_.appendLeaf(tracks, 2);
  addLeafNode(two);
  addLeafNode(one).setName("y");
  EXPECT_THAT(
      written().tree,
      ElementsAre(Links{1, 7, 0}, Links{kNone, 0, 1}, Links{kNone, 0, 1}, Links{kNone, 0, 1},
                  Links{kNone, 0, 1}, Links{kNone, 0, 2}, Links{kNone, 0, 2}, Links{kNone, 0, 3}));
}

TEST_F(TwoTableLayout, RootMayHaveLeavesOfTracksOnly) {
  std::array<Track, 5> store;
  TrackTable tracks;
  for (Track& track : store) {
    track.setMediaId(static_cast<std::uint32_t>(tracks.size()));
    tracks.push_back(&track);
  }
  tree_.setTrackTable(tracks);
  for (const std::uint32_t number : {1U, 2U, 3U, 4U, 5U, 1U}) root_.appendLeaf(tracks, number);
  ASSERT_TRUE(root_.hasTrackNumbers());
  const Tables tables = written();
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 6, 0}, Links{kNone, 0, 1}, Links{kNone, 0, 2},
                                       Links{kNone, 0, 3}, Links{kNone, 0, 4}, Links{kNone, 0, 5},
                                       Links{kNone, 0, 1}));
}

// Where a menu has the id and the name of a track, they share, whichever comes first and however
// deep the menu is.
TEST_F(TwoTableLayout, TracksShareWithMenusAnywhere) {
  std::array<Track, 4> store;
  TrackTable tracks;
  for (const auto& [id, title] : {std::pair{1U, "early"}, {2U, "late"}, {3U, "alone"}, {4U, "x"}}) {
    Track& track = store[tracks.size() - 1];
    track.setTitle(title);
    track.setMediaId(id);
    tracks.push_back(&track);
  }
  tree_.setTrackTable(tracks);
  addMenu(root_, 1, "early");
  MenuNode& songs = addMenu(root_, 0, "Songs");
  for (const std::uint32_t number : {1U, 2U, 3U, 4U}) songs.appendLeaf(tracks, number);
  MenuNode& upper = addMenu(addMenu(root_, 4, "y"), 9, "upper");
  addMenu(upper, 2, "late");
  MenuNode& again = addMenu(upper, 3, "again");
  for (const std::uint32_t number : {4U, 3U, 2U}) again.appendLeaf(tracks, number);
  const Tables tables = written();
  EXPECT_THAT(tables.names,
              ElementsAre("root", "early", "Songs", "y", "late", "alone", "x", "upper", "again"));
  EXPECT_THAT(tables.treeNames(),
              ElementsAre("root", "early", "Songs", "y", "early", "late", "alone", "x", "upper",
                          "late", "again", "x", "alone", "late"));
}

TEST_F(TwoTableLayout, TracksOfOneIdShareWhereNoMenuHasIt) {
  std::array<Track, 3> store;
  TrackTable tracks;
  for (const auto& [id, title] : {std::pair{5U, "twice"}, {6U, "once"}, {5U, "twice"}}) {
    Track& track = store[tracks.size() - 1];
    track.setTitle(title);
    track.setMediaId(id);
    tracks.push_back(&track);
  }
  tree_.setTrackTable(tracks);
  std::vector<std::string> expected = {"root", "menu", "menu", "menu"};
  for (const std::uint32_t count : {3U, 4U, 100U}) {
    MenuNode& menu = addMenu(root_, 0, "menu");
    for (std::uint32_t i = 0; i < count; ++i) {
      menu.appendLeaf(tracks, i % 3 + 1);
      expected.push_back(i % 3 == 1 ? "once" : "twice");
    }
  }
  const Tables tables = written();
  EXPECT_THAT(tables.names, ElementsAre("root", "menu", "twice", "once"));
  EXPECT_EQ(tables.treeNames(), expected);
}

// The first menu with tracks is one of many, so that their records are asked for as it is laid out.
TEST_F(TwoTableLayout, TracksOfOneIdShareInMenusOfMany) {
  constexpr std::uint32_t kTracks = 300;
  std::array<Track, kTracks> store;
  TrackTable tracks;
  tree_.setTrackTable(tracks);
  MenuNode& songs = addMenu(root_, 0, "Songs");
  std::vector<std::uint32_t> expected;
  for (std::uint32_t i = 0; i < kTracks; ++i) {
    store[i].setTitle("title");
    store[i].setMediaId(1 + i % 100);
    tracks.push_back(&store[i]);
    songs.appendLeaf(tracks, i + 1);
    expected.push_back(2 + i % 100);
  }
  const Tables tables = written();
  EXPECT_EQ(tables.data.size(), 102U);
  ASSERT_EQ(tables.tree.size(), 2 + kTracks);
  for (std::uint32_t i = 0; i < kTracks; ++i) {
    EXPECT_EQ(tables.tree[2 + i].dataIndex, expected[i]);
  }
}

TEST_F(TwoTableLayout, PlaylistsComeAfterTheirSiblingsDescendants) {
  MenuNode& playlists = addMenu(root_, 0, "Playlists");
  MenuNode& songs = addMenu(root_, 0, "Songs");
  MenuNode& list = addMenu(playlists, 1, "list", RecType::kPlaylist);
  addMedia(list, 2, "p");
  addMedia(songs, 3, "s");
  const Tables tables = written();
  EXPECT_THAT(tables.treeNames(), ElementsAre("root", "Playlists", "Songs", "s", "list", "p"));
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 2, 0}, Links{4, 1, 1}, Links{3, 1, 2},
                                       Links{kNone, 0, 3}, Links{5, 1, 4}, Links{kNone, 0, 5}));
}

TEST_F(TwoTableLayout, PlaylistsRuleHoldsAtEveryDepth) {
  MenuNode& outer = addMenu(root_, 0, "outer");
  addMedia(addMenu(root_, 0, "after"), 1, "z");
  addMedia(addMenu(outer, 0, "Playlists"), 2, "p");
  addMedia(addMenu(outer, 0, "Songs"), 3, "s");
  EXPECT_THAT(written().treeNames(),
              ElementsAre("root", "outer", "after", "Playlists", "Songs", "s", "p", "z"));
}

TEST_F(TwoTableLayout, PlaylistsWithinPlaylists) {
  MenuNode& outer = addMenu(root_, 0, "Playlists");
  addMedia(addMenu(root_, 0, "Songs"), 1, "s");
  addMedia(addMenu(outer, 9, "Playlists"), 2, "inner");
  addMedia(addMenu(outer, 0, "Other"), 3, "o");
  EXPECT_THAT(written().treeNames(),
              ElementsAre("root", "Playlists", "Songs", "s", "Playlists", "Other", "o", "inner"));
}

TEST_F(TwoTableLayout, PlaylistsOfAnotherKindOrSpellingStayInOrder) {
  for (const auto& [name, recType] : {std::pair{"Playlists"sv, 6U},
                                      {"Playlists"sv, 0x107U},
                                      {"playlists"sv, 7U},
                                      {"PLAYLISTS"sv, 7U},
                                      {"Playlist"sv, 7U},
                                      {"Playlistss"sv, 7U},
                                      {"Playlists "sv, 7U}}) {
    MenuTree tree;
    addMedia(addMenu(*tree.getRoot(), 0, name, recType), 1, "p");
    addMedia(addMenu(*tree.getRoot(), 0, "Songs"), 2, "s");
    RecordingBuffer buffer;
    writeTwoTable(tree, buffer);
    EXPECT_THAT(Tables(buffer.content).treeNames(),
                ElementsAre("root", std::string(name), "Songs", "p", "s"))
        << name << ' ' << recType;
  }
}

TEST_F(TwoTableLayout, RootNamedPlaylistsIsNothingSpecial) {
  root_.setName("Playlists");
  addMedia(root_, 1, "a");
  EXPECT_THAT(written().tree, ElementsAre(Links{1, 1, 0}, Links{kNone, 0, 1}));
}

TEST_F(TwoTableLayout, LaterPlaylistsDisplaceEarlierOnes) {
  for (const auto& [id, leaf] : {std::pair{1U, "p1"}, {2U, "p2"}, {3U, "p3"}}) {
    addMedia(addMenu(root_, id, "Playlists"), 10 * id, leaf);
  }
  addMedia(addMenu(root_, 0, "Songs"), 4, "s");
  const Tables tables = written();
  EXPECT_THAT(tables.treeNames(),
              ElementsAre("root", "Playlists", "Playlists", "Playlists", "Songs", "s", "p3"));
  EXPECT_THAT(tables.tree,
              ElementsAre(Links{1, 4, 0}, Links{0, 1, 1}, Links{0, 1, 2}, Links{6, 1, 3},
                          Links{5, 1, 4}, Links{kNone, 0, 5}, Links{kNone, 0, 6}));
}

TEST_F(TwoTableLayout, DisplacedMediaLeafPointsToZeroToo) {
  addNode(root_, NODE_TYPE_MEDIA, 1, "Playlists", RecType::kPlainMenu);
  addNode(root_, NODE_TYPE_MEDIA, 2, "Playlists", RecType::kPlainMenu);
  EXPECT_THAT(written().tree, ElementsAre(Links{1, 2, 0}, Links{0, 0, 1}, Links{kNone, 0, 2}));
}

TEST_F(TwoTableLayout, EmptyPlaylistsPointBehindTheirSiblingsDescendants) {
  addMenu(root_, 0, "Playlists");
  addMedia(addMenu(root_, 0, "Songs"), 1, "s");
  EXPECT_THAT(written().tree,
              ElementsAre(Links{1, 2, 0}, Links{4, 0, 1}, Links{3, 1, 2}, Links{kNone, 0, 3}));
}

TEST_F(TwoTableLayout, LayoutChildrenContinuesTablesThatAreNotEmpty) {
  TreeTable treeTable;
  for (int i = 0; i < 3; ++i) treeTable.appendLeaf(0);
  DataTable dataTable;
  for (int i = 0; i < 2; ++i) dataTable.appendLeaf(Child(&root_));
  DataRecordIndex idMap(tree_);
  EXPECT_EQ(layoutChildren(nullptr, treeTable, dataTable, idMap), kNone);
  EXPECT_EQ(layoutChildren(&root_, treeTable, dataTable, idMap), 3U) << "no children yet";
  MenuNode& leaf = addMedia(root_, 1, "a");
  addMedia(leaf, 2, "hidden");
  EXPECT_EQ(layoutChildren(&leaf, treeTable, dataTable, idMap), kNone);
  EXPECT_EQ(layoutChildren(&root_, treeTable, dataTable, idMap), 3U);
  ASSERT_EQ(treeTable.size(), 4U);
  const auto lastDataIndex = [&] {
    std::vector<TreeRecord> records;
    LinkedTableReader<TreeRecord>(treeTable).read(records, 100,
                                                  [](std::uint32_t) { return TreeRecord(); });
    return records.back().dataIndex;
  };
  EXPECT_EQ(lastDataIndex(), 2U);
  EXPECT_EQ(layoutChildren(&root_, treeTable, dataTable, idMap), 4U);
  EXPECT_EQ(treeTable.size(), 5U);
  EXPECT_EQ(lastDataIndex(), 2U) << "shared across calls";
}

// Compared one with another, these names would take minutes.

}  // namespace
}  // namespace Orvane
