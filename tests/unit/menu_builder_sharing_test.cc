// Trees that are built from more than one manager, and tracks that change after they were added.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "inventory/menu_builder.h"
#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "test_support.h"
#include "track_lists.h"
#include "two_tables.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

// The second manager's first track must not pass for the first one's.
TEST(MenuBuilderSharing, TracksOfTwoManagersAreNotMixedUp) {
  TrackManager one;
  TrackManager two;
  addSong(one, 1, "one's");
  addSong(two, 2, "two's");
  MenuTree tree;
  addSongsMenu(one, tree, *tree.getRoot());
  addSongsMenu(two, tree, *tree.getRoot());
  addSongsMenu(one, tree, *tree.getRoot());
  addSongsMenu(two, tree, *tree.getRoot());
  RecordingBuffer buffer;
  writeTwoTable(tree, buffer);
  const Tables tables(buffer.content);
  EXPECT_THAT(tables.treeNames(), ElementsAre("root", "one's", "two's", "one's", "two's"));
  EXPECT_EQ(tables.data.size(), 3U);
}

// A track with a media id that is taken has no number in its manager, but may be in a playlist.
TEST(MenuBuilderSharing, LaterTrackOfAMediaIdIsItself) {
  TrackManager manager;
  addSong(manager, 1, "first");
  const Track* const later = addSong(manager, 1, "later");
  addSong(manager, 2, "other");
  Playlist* const playlist = manager.addPlaylist("list");
  playlist->getTracks() = {later, manager.findTrack(1), later, manager.findTrack(2)};
  MenuTree tree;
  addPlaylistsMenu(manager, tree, *tree.getRoot());
  RecordingBuffer buffer;
  writeTwoTable(tree, buffer);
  EXPECT_THAT(Tables(buffer.content).treeNames(),
              ElementsAre("root", "list", "later", "first", "later", "other"));
}

// A track of another manager carries a number that means another track here, or none at all.
TEST(MenuBuilderSharing, PlaylistMayHaveAnotherManagersTracks) {
  TrackManager manager;
  TrackManager other;
  addSong(manager, 1, "mine");
  Playlist* const playlist = manager.addPlaylist("list");
  playlist->getTracks() = {addSong(other, 7, "theirs"), addSong(other, 8, "beyond"),
                           manager.findTrack(1)};
  MenuTree tree;
  addPlaylistsMenu(manager, tree, *tree.getRoot());
  RecordingBuffer buffer;
  writeTwoTable(tree, buffer);
  EXPECT_THAT(Tables(buffer.content).treeNames(),
              ElementsAre("root", "list", "theirs", "beyond", "mine"));
}

// Each menu beneath the root, with its leaves.
std::vector<std::string> menusOf(MenuTree& tree) {
  std::vector<std::string> menus;
  const MenuNode& root = *tree.getRoot();
  std::for_each(root.childrenBegin(), root.childrenEnd(), [&](const MenuNode* menu) {
    std::string& line = menus.emplace_back(menu->getName());
    line += ':';
    std::for_each(menu->childrenBegin(), menu->childrenEnd(),
                  [&](const MenuNode* leaf) { line.append(" ").append(leaf->getName()); });
  });
  return menus;
}

TEST(MenuBuilderSharing, RatingTakenBackHasNoStars) {
  TrackManager manager;
  addSong(manager, 1, "kept", 0, "", 2);
  addSong(manager, 2, "changed", 0, "", 2)->setRating(0);
  MenuTree tree;
  addRatingsMenu(manager, tree, *tree.getRoot());
  EXPECT_THAT(menusOf(tree), ElementsAre("Three Stars:", "Two Stars: kept", "One Star:"));
}

TEST(MenuBuilderSharing, OtherGenreMakesARunOfItsOwn) {
  const NamedId artist(0, "");
  const NamedId genre(9, "Other");
  const Album other(0, "", artist, genre);
  TrackManager manager;
  for (std::uint32_t id = 1; id <= 4; ++id) {
    Track* const track =
        manager.addTrack("song" + std::to_string(id), id, "", 0, "", 0, "Pop", 5, 0);
    if (id == 3) track->setAlbum(other);
  }
  MenuTree tree;
  addGenresMenu(manager, tree, *tree.getRoot());
  EXPECT_THAT(menusOf(tree), ElementsAre("Pop: song1 song2", "Other: song3", "Pop: song4"));
}

// It has no number any more.
TEST(MenuBuilderSharing, OtherTitleIsASongAmongTheOthers) {
  TrackManager manager;
  addSong(manager, 1, "one");
  addSong(manager, 2, "two")->setTitle("changed");
  addSong(manager, 3, "three");
  MenuTree tree;
  addSongsMenu(manager, tree, *tree.getRoot());
  EXPECT_THAT(menusOf(tree), ElementsAre("one:", "changed:", "three:"));
}

}  // namespace
}  // namespace Orvane::test
