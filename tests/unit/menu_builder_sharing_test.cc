// Trees that are built from more than one manager, and tracks that change after they were added.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
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
using ::testing::IsEmpty;

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

// The albums are in the order of their names, in which they alternate.
TEST(MenuBuilderSharing, OtherAlbumLeavesATrackWhereItWas) {
  TrackManager manager;
  std::vector<Track*> tracks;
  for (std::uint32_t id = 1; id <= 3; ++id) {
    tracks.push_back(
        manager.addTrack("song" + std::to_string(id), id, "", 0, "X", id == 2 ? 2 : 1, "", 0, 0));
  }
  tracks[1]->setAlbum(tracks[0]->getAlbum());
  MenuTree tree;
  addAlbumsMenu(manager, tree, *tree.getRoot());
  EXPECT_THAT(menusOf(tree), ElementsAre("X: song1 song2 song3"));
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

class MenuBuilderTwins : public ::testing::Test {
 protected:
  MenuBuilderTwins() {
    add(1, "Ann", 10, "one");
    add(2, "Bob", 20, "two");
    add(1, "Ann", 11, "three");
    add(1, "Ann", 10, "one");
    add(3, "Cat", 20, "two");
    add(3, "Cat", 30, "three");
  }

  void add(std::uint32_t artistId, std::string_view artist, std::uint32_t albumId,
           std::string_view album) {
    manager_.addTrack("song", ++mediaId_, artist, artistId, album, albumId, "Pop", 5, 0);
  }

  // Each menu in it, or one deeper, with the numbers of its leaves, and whether it has a twin.
  static std::vector<std::string> albumsIn(const MenuTree& tree, std::size_t category,
                                           bool deeper) {
    std::vector<std::string> lines;
    const MenuNode& menu = *tree.getRoot()->childrenBegin()[category];
    const auto addLines = [&](const MenuNode& parent, const std::string& before) {
      std::for_each(parent.childrenBegin(), parent.childrenEnd(), [&](const MenuNode* album) {
        std::string& line = lines.emplace_back(before + std::to_string(album->getMediaId()));
        for (const std::uint32_t number : album->trackNumbers()) {
          line += " " + std::to_string(number);
        }
        if (album->hasTwin()) line += " twin";
      });
    };
    if (!deeper) {
      addLines(menu, "");
    } else {
      std::for_each(menu.childrenBegin(), menu.childrenEnd(), [&](const MenuNode* artist) {
        addLines(*artist, std::string(artist->getName()) + " ");
      });
    }
    return lines;
  }

  // Where another test of this process has changed a track, there are no twins.
  static std::string twin(const std::string& line) {
    return Track::wereAnyChanged() ? line : line + " twin";
  }

  static std::vector<std::string> artistsOf(const MenuTree& tree) {
    return albumsIn(tree, 1, true);
  }
  static std::vector<std::string> albumsOf(const MenuTree& tree) {
    return albumsIn(tree, 2, false);
  }

  TrackManager manager_;
  std::uint32_t mediaId_ = 0;
};

// "two" has two artists, so that theirs are found track by track.
TEST_F(MenuBuilderTwins, AreAlbumsOfArtistsWhoHaveNoOthers) {
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  EXPECT_THAT(artistsOf(tree), ElementsAre(twin("Ann 10 1 4"), twin("Ann 11 3"), "Bob 20 2",
                                           "Cat 20 5", "Cat 30 6"));
  EXPECT_THAT(albumsOf(tree), ElementsAre(twin("10 1 4"), twin("11 3"), "30 6", "20 2 5"));
}

TEST_F(MenuBuilderTwins, ComeInTheOrderOfTheirFirstTracks) {
  add(4, "Dee", 41, "zz");
  add(4, "Dee", 40, "aa");
  add(4, "Dee", 41, "zz");
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  EXPECT_THAT(artistsOf(tree),
              ElementsAre(twin("Ann 10 1 4"), twin("Ann 11 3"), "Bob 20 2", "Cat 20 5", "Cat 30 6",
                          twin("Dee 41 7 9"), twin("Dee 40 8")));
}

TEST_F(MenuBuilderTwins, AreThereHoweverManyComeAtOnce) {
  std::vector<std::string> expected = {twin("Ann 10 1 4"), twin("Ann 11 3"), "Bob 20 2", "Cat 20 5",
                                       "Cat 30 6"};
  for (std::uint32_t i = 100; i < 150; ++i) {
    const std::string name = "Dee " + std::to_string(i);
    add(i, name, i, name);
    add(i, name, i, name);
    expected.push_back(twin(name + " " + std::to_string(i) + " " + std::to_string(mediaId_ - 1) +
                            " " + std::to_string(mediaId_)));
  }
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  EXPECT_EQ(artistsOf(tree), expected);
}

TEST_F(MenuBuilderTwins, AreNoneWhereAnAlbumIsUnlikeOthers) {
  add(4, "Dee", 0, "");                     // in no album
  add(5, "Eve", 50, std::string(65, 'x'));  // a menu a track
  add(5, "Eve", 50, std::string(65, 'x'));
  add(6, "Fay", 60, "six");  // of two genres
  manager_.addTrack("song", 99, "Fay", 6, "six", 60, "Rock", 6, 0);
  add(0, "Gil", 70, "seven");  // no artist of an id
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  EXPECT_THAT(artistsOf(tree),
              ElementsAre(twin("Ann 10 1 4"), twin("Ann 11 3"), "Bob 20 2", "Cat 20 5", "Cat 30 6",
                          "Dee 0 7", "Eve 50 8", "Eve 50 9", "Fay 60 10 11"));
}

TEST_F(MenuBuilderTwins, AreNoneWhereArtistsHaveOneName) {
  add(4, "ANN", 40, "four");
  add(1, "Ann", 10, "one");
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  EXPECT_THAT(artistsOf(tree), ElementsAre("Ann 10 1 4", "Ann 11 3", "ANN 40 7", "Ann 10 8",
                                           "Bob 20 2", "Cat 20 5", "Cat 30 6"));
}

TEST_F(MenuBuilderTwins, AreNoneWhereNumbersMeanNothing) {
  TrackManager other;
  addSong(other, 1, "other");
  MenuTree tree;
  tree.setTrackTable(other.getIndex().getTracksByNumber());
  buildMenuFromInventory(manager_, tree);
  EXPECT_THAT(artistsOf(tree), ElementsAre("Ann 10", "Ann 11", "Bob 20", "Cat 20", "Cat 30"));
  EXPECT_THAT(albumsOf(tree), ElementsAre("10", "11", "30", "20"));
}

TEST_F(MenuBuilderTwins, StandInTheSameMenusWhenTheInventoryIsUsedUp) {
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  MenuTree last;
  turnInventoryIntoMenu(manager_, last);
  EXPECT_EQ(artistsOf(last), artistsOf(tree));
  EXPECT_EQ(albumsOf(last), albumsOf(tree));
  RecordingBuffer expected;
  RecordingBuffer actual;
  writeTwoTable(tree, expected);
  writeTwoTable(last, actual);
  EXPECT_EQ(actual.content, expected.content);

  EXPECT_EQ(manager_.tracksBegin(), manager_.tracksEnd());
  EXPECT_THAT(artists(manager_), IsEmpty());
  EXPECT_THAT(albums(manager_), IsEmpty());
  EXPECT_THAT(genres(manager_), IsEmpty());
  EXPECT_THAT(ratings(manager_), IsEmpty());
}

}  // namespace
}  // namespace Orvane::test
