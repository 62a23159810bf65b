#include "inventory/menu_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "test_support.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MenuBuilder : public ::testing::Test {
 protected:
  Track* add(std::uint32_t mediaId, std::string_view title, std::uint32_t artistId,
             std::string_view artist, std::uint32_t albumId, std::string_view album,
             std::uint32_t genreId = 0, std::string_view genre = "", std::uint32_t rating = 0) {
    return manager_.addTrack(title, mediaId, artist, artistId, album, albumId, genre, genreId,
                             rating);
  }
  Track* addArtist(std::uint32_t mediaId, std::uint32_t id, std::string_view name) {
    return add(mediaId, "t" + std::to_string(mediaId), id, name, 0, "");
  }
  Track* addAlbum(std::uint32_t mediaId, std::uint32_t id, std::string_view name) {
    return add(mediaId, "t" + std::to_string(mediaId), 0, "", id, name);
  }
  Track* addGenre(std::uint32_t mediaId, std::uint32_t id, std::string_view name) {
    return add(mediaId, "t" + std::to_string(mediaId), 0, "", 0, "", id, name);
  }
  Track* addRated(std::uint32_t mediaId, std::uint32_t rating) {
    return add(mediaId, "t" + std::to_string(mediaId), 0, "", 0, "", 0, "", rating);
  }

  // The outline of a category: a line a node beneath it, "id name", indented by depth.
  std::vector<std::string> outline(std::string_view category) {
    MenuTree tree;
    buildMenuFromInventory(manager_, tree);
    MenuNode::Position position = nullptr;
    EXPECT_TRUE(tree.getRoot()->findChildByName(position, category));
    std::vector<std::string> lines;
    addOutline(**position, "", lines);
    return lines;
  }

  TrackManager manager_;

 private:
  static void addOutline(const MenuNode& menu, const std::string& indent,
                         std::vector<std::string>& lines) {
    for (auto child = menu.childrenBegin(); child != menu.childrenEnd(); ++child) {
      lines.push_back(indent + std::to_string((*child)->getMediaId()) + " " +
                      std::string((*child)->getName()));
      addOutline(**child, indent + "  ", lines);
    }
  }
};

TEST_F(MenuBuilder, EmptyInventoryHasSixCategoriesAndThreeStarMenus) {
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  EXPECT_THAT(
      describeTree(*tree.getRoot()),
      ElementsAre("0: 1 0 'root' 7 0 0", "1: 1 0 'Playlists' 7 0 0", "1: 1 0 'Artists' 7 0 0",
                  "1: 1 0 'Albums' 7 0 0", "1: 1 0 'Songs' 7 0 0", "1: 1 0 'Genres' 7 0 0",
                  "1: 1 0 'Favorites' 7 0 0", "2: 0 0 'Three Stars' 13 0 0",
                  "2: 0 0 'Two Stars' 12 0 0", "2: 0 0 'One Star' 11 0 0"));
}

TEST_F(MenuBuilder, ShowsOneTrackInEachPlaceAsALeafOfItsOwn) {
  const Track* const track = add(9, "Song", 1, "Singer", 2, "Record", 3, "Style", 2);
  manager_.addPlaylist("Mix", 4)->getTracks() = {track, track};
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  EXPECT_THAT(describeTree(*tree.getRoot()),
              ElementsAre("0: 1 0 'root' 7 0 0", "1: 1 0 'Playlists' 7 0 0", "2: 1 4 'Mix' 6 0 0",
                          "3: 2 9 'Song' 0 0 0", "3: 2 9 'Song' 0 0 0", "1: 1 0 'Artists' 7 0 0",
                          "2: 1 1 'Singer' 4 0 0", "3: 1 2 'Record' 3 0 0", "4: 2 9 'Song' 0 0 0",
                          "1: 1 0 'Albums' 7 0 0", "2: 1 2 'Record' 3 0 0", "3: 2 9 'Song' 0 0 0",
                          "1: 1 0 'Songs' 7 0 0", "2: 2 9 'Song' 0 0 0", "1: 1 0 'Genres' 7 0 0",
                          "2: 1 3 'Style' 5 0 0", "3: 2 9 'Song' 0 0 0", "1: 1 0 'Favorites' 7 0 0",
                          "2: 0 0 'Three Stars' 13 0 0", "2: 0 0 'Two Stars' 12 0 0",
                          "3: 2 9 'Song' 0 0 0", "2: 0 0 'One Star' 11 0 0"));
}

// What is known of one artist's albums isn't kept for the next, who may have the same.
TEST_F(MenuBuilder, ArtistsAfterOneOfManyAlbumsHaveTheirOwn) {
  constexpr std::uint32_t kAlbums = 3'000;
  for (std::uint32_t i = 1; i <= kAlbums; ++i) add(i, "t", 1, "a", i, "album");
  add(3'070, "t", 2, "b", kAlbums, "album");  // the one met last
  add(3'090, "t", 2, "b", 9, "album");
  add(3'071, "t", 2, "b", kAlbums, "album");
  add(1'000'000, "u", 2, "b", 9, "album");
  add(1'000'001, "t", 3, "c", 9, "album");

  const std::vector<std::string> lines = outline("Artists");
  ASSERT_EQ(lines.size(), 1 + 2 * kAlbums + 10);
  EXPECT_EQ(lines[1], "  1 album");
  EXPECT_EQ(lines[2 * kAlbums], "    3000 t");
  EXPECT_THAT(std::vector(lines.end() - 10, lines.end()),
              ElementsAre("2 b", "  3000 album", "    3070 t", "    3071 t", "  9 album",
                          "    3090 t", "    1000000 u", "3 c", "  9 album", "    1000001 t"));
}

TEST_F(MenuBuilder, LeavesKnowTheirTrackAndMenusNone) {
  const Track* const track = add(9, "Song", 0, "", 0, "");
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  const MenuNode& songs = *tree.getRoot()->childrenBegin()[3];
  EXPECT_EQ(songs.getTrack(), nullptr);
  EXPECT_EQ(songs.childrenBegin()[0]->getTrack(), track);
}

TEST_F(MenuBuilder, LeavesAreNumbers) {
  manager_.addPlaylist("list")->getTracks().push_back(addArtist(1, 2, "a"));
  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  for (const char* const name : {"Playlists", "Artists", "Songs"}) {
    MenuNode::Position menu = nullptr;
    ASSERT_TRUE(tree.getRoot()->findChildByName(menu, name));
    while ((*menu)->childAt(0).isNode()) menu = (*menu)->childrenBegin();
    EXPECT_THAT((*menu)->trackNumbers(), ElementsAre(1U)) << name;
  }
}

TEST_F(MenuBuilder, AppendsBehindWhatTheRootHas) {
  MenuTree tree;
  addMenu(*tree.getRoot(), 1, "Before");
  buildMenuFromInventory(manager_, tree);
  EXPECT_EQ(tree.getRoot()->childCount(), 7U);
  EXPECT_EQ(tree.getRoot()->childrenBegin()[0]->getName(), "Before");
}

TEST_F(MenuBuilder, PlaylistsAreNotMerged) {
  const Track* const track = add(9, "Song", 0, "", 0, "");
  manager_.addPlaylist("Mix", 4)->getTracks() = {track};
  manager_.addPlaylist("Mix", 4)->getTracks() = {track};
  manager_.addPlaylist("", 0);
  EXPECT_THAT(outline("Playlists"), ElementsAre("4 Mix", "  9 Song", "4 Mix", "  9 Song", "0 "));
}

TEST_F(MenuBuilder, PlaylistRegisteredTwiceIsShownTwice) {
  Playlist* const playlist = manager_.addPlaylist("Mix", 4);
  manager_.registerPlaylist(playlist);
  EXPECT_THAT(outline("Playlists"), ElementsAre("4 Mix", "4 Mix"));
}

TEST_F(MenuBuilder, TrackWithoutIdsIsOnlyASong) {
  add(9, "Song", 0, "Singer", 0, "Record", 0, "Style", 0);
  EXPECT_THAT(outline("Artists"), IsEmpty());
  EXPECT_THAT(outline("Albums"), IsEmpty());
  EXPECT_THAT(outline("Genres"), IsEmpty());
  EXPECT_THAT(outline("Favorites"), ElementsAre("0 Three Stars", "0 Two Stars", "0 One Star"));
  EXPECT_THAT(outline("Songs"), ElementsAre("9 Song"));
}

TEST_F(MenuBuilder, SongsKeepTheOrderOfTheTracks) {
  add(3, "c", 0, "", 0, "");
  add(1, "b", 0, "", 0, "");
  add(2, "a", 0, "", 0, "");
  add(1, "again", 0, "", 0, "");
  EXPECT_THAT(outline("Songs"), ElementsAre("3 c", "1 b", "2 a"));
}

TEST_F(MenuBuilder, TracksOfOneArtistAndAlbumShareMenus) {
  add(1, "a", 7, "Singer", 8, "Record");
  add(2, "b", 7, "Singer", 8, "Record");
  EXPECT_THAT(outline("Artists"), ElementsAre("7 Singer", "  8 Record", "    1 a", "    2 b"));
  EXPECT_THAT(outline("Albums"), ElementsAre("8 Record", "  1 a", "  2 b"));
}

TEST_F(MenuBuilder, ArtistIsShownOncePerRun) {
  addArtist(1, 7, "Singer");
  addArtist(2, 8, "SINGER");
  addArtist(3, 7, "Singer");
  addArtist(4, 7, "Singer");
  EXPECT_THAT(outline("Artists"),
              ElementsAre("7 Singer", "  0 ", "    1 t1", "8 SINGER", "  0 ", "    2 t2",
                          "7 Singer", "  0 ", "    3 t3", "    4 t4"));
}

TEST_F(MenuBuilder, ArtistsMenuHasTheNameOfItsFirstTrack) {
  addArtist(1, 7, "Singer");
  addArtist(2, 7, "singer");
  EXPECT_THAT(outline("Artists"), ElementsAre("7 Singer", "  0 ", "    1 t1", "    2 t2"));
}

TEST_F(MenuBuilder, AlbumsOfAnArtistAreToldApartByNameAndId) {
  add(1, "a", 7, "Singer", 8, "Record");
  add(2, "b", 7, "Singer", 9, "Record");
  add(3, "c", 7, "Singer", 8, "Other");
  add(4, "d", 7, "Singer", 8, "Record");
  add(5, "e", 7, "Singer", 8, "record");
  EXPECT_THAT(outline("Artists"),
              ElementsAre("7 Singer", "  8 Record", "    1 a", "    4 d", "  9 Record", "    2 b",
                          "  8 Other", "    3 c", "  8 record", "    5 e"));
}

// Albums are told by what tracks share, or else by id and name.
TEST_F(MenuBuilder, AlbumsMayBeSharedOrAlike) {
  static constexpr NamedId kArtist(5, "A");
  static constexpr NamedId kGenre(0, "");
  static constexpr std::array<Album, 4> kAlbums = {{{1, "name", kArtist, kGenre},
                                                    {1, "na", kArtist, kGenre},
                                                    {129, "na", kArtist, kGenre},
                                                    {1, "name", kArtist, kGenre}}};
  std::uint32_t mediaId = 0;
  for (const std::size_t album : {0U, 1U, 2U, 3U, 1U}) {
    auto track = std::make_unique<Track>();
    track->setTitle("t");
    track->setMediaId(++mediaId);
    track->setAlbum(kAlbums[album]);
    manager_.registerTrack(track.release());
  }
  EXPECT_THAT(outline("Artists"), ElementsAre("5 A", "  1 name", "    1 t", "    4 t", "  1 na",
                                              "    2 t", "    5 t", "  129 na", "    3 t"));
}

TEST_F(MenuBuilder, ArtistsAlbumMayHaveNoId) {
  add(1, "a", 7, "Singer", 0, "Record");
  add(2, "b", 7, "Singer", 0, "");
  EXPECT_THAT(outline("Artists"),
              ElementsAre("7 Singer", "  0 Record", "    1 a", "  0 ", "    2 b"));
  EXPECT_THAT(outline("Albums"), IsEmpty());
}

TEST_F(MenuBuilder, AlbumSplitIntoRunsIsOneUnderAlbums) {
  add(1, "a", 7, "Singer", 8, "Record");
  add(2, "b", 6, "Band", 9, "RECORD");
  add(3, "c", 7, "Singer", 8, "Record");
  EXPECT_THAT(outline("Albums"), ElementsAre("8 Record", "  1 a", "  3 c", "9 RECORD", "  2 b"));
}

TEST_F(MenuBuilder, AlbumInTwoArtistRunsIsUnderEach) {
  add(1, "a", 7, "Singer", 8, "Record");
  add(2, "b", 6, "singer", 8, "Record");
  add(3, "c", 7, "Singer", 8, "Record");
  EXPECT_THAT(outline("Artists"),
              ElementsAre("7 Singer", "  8 Record", "    1 a", "6 singer", "  8 Record", "    2 b",
                          "7 Singer", "  8 Record", "    3 c"));
  EXPECT_THAT(outline("Albums"), ElementsAre("8 Record", "  1 a", "  2 b", "  3 c"));
}

TEST_F(MenuBuilder, AlbumWithTwoNamesHasTheNameThatItsRunBeginsWith) {
  addAlbum(1, 8, "Record");
  addAlbum(2, 8, "RECORD");
  EXPECT_THAT(outline("Albums"), ElementsAre("8 Record", "  1 t1", "  2 t2"));
  addAlbum(3, 9, "record");
  addAlbum(4, 8, "RECORD");
  EXPECT_THAT(outline("Albums"), ElementsAre("8 Record", "  1 t1", "  2 t2", "9 record", "  3 t3",
                                             "8 RECORD", "  4 t4"));
}

TEST_F(MenuBuilder, LongAlbumNameHasAMenuATrackUnderItsArtist) {
  const std::string name(65, 'x');
  const std::string stored(62, 'x');
  add(1, "a", 7, "Singer", 8, name);
  add(2, "b", 7, "Singer", 8, name);
  EXPECT_THAT(outline("Artists"),
              ElementsAre("7 Singer", "  8 " + stored, "    1 a", "  8 " + stored, "    2 b"));
  EXPECT_THAT(outline("Albums"), ElementsAre("8 " + stored, "  1 a", "  2 b"));
}

TEST_F(MenuBuilder, AlbumNamedLikeAShortenedOneJoinsTheFirstOfThose) {
  const std::string name(65, 'x');
  const std::string stored(62, 'x');
  add(1, "a", 7, "Singer", 8, name);
  add(2, "b", 7, "Singer", 8, name);
  add(3, "c", 7, "Singer", 8, stored);
  add(4, "d", 7, "Singer", 8, stored);
  // The shorter name comes first in the order of names, but only once its id bears it.
  EXPECT_THAT(outline("Artists"), ElementsAre("7 Singer", "  8 " + stored, "    1 a", "    3 c",
                                              "    4 d", "  8 " + stored, "    2 b"));
}

TEST_F(MenuBuilder, NamesOf62To64BytesAreWhole) {
  for (std::uint32_t length = 62; length <= 64; ++length) {
    const std::string name(length, 'x');
    add(length, name, length, name, length, name);
    add(length + 100, name, length, name, length, name);
    const std::string idAndName = std::to_string(length) + " " + name;
    EXPECT_THAT(outline("Artists"),
                ::testing::IsSupersetOf({idAndName, "  " + idAndName, "    " + idAndName}));
  }
  EXPECT_EQ(outline("Artists").size(), 12U);
}

TEST_F(MenuBuilder, GenreIsShownOncePerRun) {
  addGenre(1, 7, "Rock");
  addGenre(2, 8, "ROCK");
  addGenre(3, 7, "Rock");
  addGenre(4, 9, "Jazz");
  EXPECT_THAT(outline("Genres"), ElementsAre("9 Jazz", "  4 t4", "7 Rock", "  1 t1", "8 ROCK",
                                             "  2 t2", "7 Rock", "  3 t3"));
}

TEST_F(MenuBuilder, LargestIdStartsAGroupAndSharesIt) {
  add(1, "a", 4294967295, "A", 4294967295, "B", 4294967295, "C");
  add(2, "b", 4294967295, "A", 4294967295, "B", 4294967295, "C");
  EXPECT_THAT(outline("Artists"),
              ElementsAre("4294967295 A", "  4294967295 B", "    1 a", "    2 b"));
  EXPECT_THAT(outline("Albums"), ElementsAre("4294967295 B", "  1 a", "  2 b"));
  EXPECT_THAT(outline("Genres"), ElementsAre("4294967295 C", "  1 a", "  2 b"));
}

TEST_F(MenuBuilder, OnlyRatingsOneToThreeHaveStars) {
  for (const std::uint32_t rating : {0U, 1U, 2U, 3U, 4U, 5U, 256U, 4294967295U, 2147483649U}) {
    addRated(rating == 0 ? 100 : rating, rating);
  }
  addRated(11, 1);
  addRated(12, 3);
  EXPECT_THAT(outline("Favorites"),
              ElementsAre("0 Three Stars", "  3 t3", "  12 t12", "0 Two Stars", "  2 t2",
                          "0 One Star", "  1 t1", "  11 t11"));
}

// What has been withdrawn from the manager may still be in a playlist, beside what came later.
TEST_F(MenuBuilder, TracksFromBeforeAClearAreStillTheirOwn) {
  const Track* const old = add(1, "old", 0, "", 0, "");
  manager_.clear();
  const Track* const now = add(2, "new", 0, "", 0, "");
  manager_.addPlaylist("Both", 3)->getTracks() = {old, now};
  EXPECT_THAT(outline("Playlists"), ElementsAre("3 Both", "  1 old", "  2 new"));

  MenuTree tree;
  buildMenuFromInventory(manager_, tree);
  RecordingBuffer buffer;
  writeTwoTable(tree, buffer);
  EXPECT_NE(buffer.content.find("old"), std::string::npos);
  EXPECT_NE(buffer.content.find("new"), std::string::npos);
}

TEST_F(MenuBuilder, FillersTakeAnyMenu) {
  add(1, "a", 7, "Singer", 8, "Record", 9, "Style", 1);
  manager_.addPlaylist("Mix", 4);
  MenuTree tree;
  for (const auto fill : {addPlaylistsMenu, addArtistsMenu, addAlbumsMenu, addSongsMenu,
                          addGenresMenu, addRatingsMenu}) {
    fill(manager_, tree, *tree.getRoot());
  }
  std::vector<std::string> names;
  for (auto child = tree.getRoot()->childrenBegin(); child != tree.getRoot()->childrenEnd();
       ++child) {
    names.emplace_back((*child)->getName());
  }
  EXPECT_THAT(names, ElementsAre("Mix", "Singer", "Record", "a", "Style", "Three Stars",
                                 "Two Stars", "One Star"));
}

TEST_F(MenuBuilder, TreeStaysWhenTheManagerIsCleared) {
  const Track* const track = add(1, "b", 2, "artist", 3, "album", 4, "genre", 2);
  add(5, "a", 2, "artist", 3, "album", 4, "genre", 0);
  manager_.addPlaylist("playlist", 6)->getTracks().push_back(track);
  std::vector<std::string> contents;
  for (const bool isCleared : {false, true}) {
    MenuTree tree;
    buildMenuFromInventory(manager_, tree);
    if (isCleared) manager_.clear();
    MenuTree::sortTree(tree.getRoot());
    RecordingBuffer buffer;
    writeTwoTable(tree, buffer);
    contents.push_back(buffer.content);
  }
  EXPECT_EQ(contents[0], contents[1]);
}

}  // namespace
}  // namespace Orvane::test
