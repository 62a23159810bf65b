#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inventory/track_manager.h"
#include "track_lists.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TrackManager, RemoveTrackWithdrawsItEverywhere) {
  TrackManager manager;
  const Track* const one = addSong(manager, 1, "1", 1, "A", 1);
  const Track* const two = addSong(manager, 2, "2", 1, "A", 1);
  Playlist* const playlist = manager.addPlaylist("List");
  playlist->getTracks() = {one, two, one};
  manager.removeTrack(one);

  EXPECT_FALSE(manager.hasTrack(1));
  EXPECT_EQ(manager.findTrack(1), nullptr);
  EXPECT_THAT(playlist->getTracks(), ElementsAre(two));
  EXPECT_THAT(artists(manager), ElementsAre(2));
  EXPECT_THAT(albums(manager), ElementsAre(2));
  EXPECT_THAT(genres(manager), ElementsAre(2));
  EXPECT_THAT(ratings(manager), ElementsAre(2));
}

TEST(TrackManager, RemovalKeepsTheLengthOfTheTrackList) {
  TrackManager manager;
  addSong(manager, 1, "1");
  const Track* const two = addSong(manager, 2, "2");
  const Track* const three = addSong(manager, 3, "3");
  manager.removeTrack(two);
  EXPECT_THAT(trackList(manager), ElementsAre(1, 3, 3));
  manager.removeTrack(three);
  EXPECT_THAT(trackList(manager), ElementsAre(1, 3, 3));
  addSong(manager, 4, "4");
  EXPECT_THAT(trackList(manager), ElementsAre(1, 3, 3, 4));
}

TEST(TrackManager, RemovingARemovedTrackStillMovesTheListUp) {
  TrackManager manager;
  addSong(manager, 1, "1");
  const Track* const two = addSong(manager, 2, "2");
  manager.removeTrack(two);
  addSong(manager, 3, "3");
  EXPECT_THAT(trackList(manager), ElementsAre(1, 2, 3));
  manager.removeTrack(two);
  EXPECT_THAT(trackList(manager), ElementsAre(1, 3, 3));
}

TEST(TrackManager, RemovingTheSecondTrackOfAnIdTakesTheIdAway) {
  TrackManager manager;
  const Track* const first = addSong(manager, 1, "first", 1, "A");
  const Track* const second = addSong(manager, 1, "second", 2, "B");
  Playlist* const playlist = manager.addPlaylist("List");
  playlist->getTracks() = {first, second};
  manager.removeTrack(second);
  EXPECT_FALSE(manager.hasTrack(1));
  EXPECT_THAT(artists(manager), IsEmpty());
  EXPECT_THAT(playlist->getTracks(), ElementsAre(first));
}

TEST(TrackManager, RemovedIdCanComeAgain) {
  TrackManager manager;
  addSong(manager, 1, "first", 1, "A");
  manager.removeTrackById(1);
  const Track* const again = addSong(manager, 1, "again", 2, "B");
  EXPECT_EQ(manager.findTrack(1), again);
  EXPECT_THAT(artists(manager), ElementsAre(1));
}

TEST(TrackManager, RemovingAnUnknownIdLeavesAnEmptyEntry) {
  TrackManager manager;
  addSong(manager, 1, "1");
  EXPECT_FALSE(manager.getIndex().hasEntry(9));
  manager.removeTrackById(9);
  EXPECT_TRUE(manager.getIndex().hasEntry(9));
  EXPECT_FALSE(manager.hasTrack(9));
  EXPECT_EQ(manager.findTrack(9), nullptr);
  EXPECT_THAT(trackList(manager), ElementsAre(1));

  const Track* const track = addSong(manager, 9, "9");
  EXPECT_EQ(manager.findTrack(9), track);
  EXPECT_THAT(trackList(manager), ElementsAre(1, 9));
}

class CategoryRemoval : public ::testing::Test {
 protected:
  CategoryRemoval() {
    one_ = manager_.addTrack("1", 1, "A", 10, "B", 20, "C", 30, 1);
    two_ = manager_.addTrack("2", 2, "A", 11, "B", 21, "C", 31, 2);
    playlist_ = manager_.addPlaylist("List");
    playlist_->getTracks() = {one_, two_, one_};
  }

  TrackManager manager_;
  const Track* one_ = nullptr;
  const Track* two_ = nullptr;
  Playlist* playlist_ = nullptr;
};

TEST_F(CategoryRemoval, OfAnArtist) {
  manager_.removeArtist(10);
  EXPECT_THAT(artists(manager_), ElementsAre(2));
  EXPECT_THAT(albums(manager_), ElementsAre(2));
  EXPECT_THAT(genres(manager_), ElementsAre(2));
  EXPECT_THAT(playlist_->getTracks(), ElementsAre(two_));
  // What else there is of the track stays.
  EXPECT_THAT(ratings(manager_), ElementsAre(1, 2));
  EXPECT_THAT(trackList(manager_), ElementsAre(1, 2));
  EXPECT_TRUE(manager_.hasTrack(1));
}

TEST_F(CategoryRemoval, OfAnAlbum) {
  manager_.removeAlbum(21);
  EXPECT_THAT(artists(manager_), ElementsAre(1));
  EXPECT_THAT(albums(manager_), ElementsAre(1));
  EXPECT_THAT(genres(manager_), ElementsAre(1));
  EXPECT_THAT(playlist_->getTracks(), ElementsAre(one_, one_));
}

TEST_F(CategoryRemoval, OfAGenre) {
  manager_.removeGenre(30);
  EXPECT_THAT(artists(manager_), ElementsAre(2));
  EXPECT_THAT(albums(manager_), ElementsAre(2));
  EXPECT_THAT(genres(manager_), ElementsAre(2));
  EXPECT_THAT(playlist_->getTracks(), ElementsAre(two_));
}

TEST_F(CategoryRemoval, OfAnUnknownIdChangesNothing) {
  manager_.removeArtist(20);
  manager_.removeAlbum(30);
  manager_.removeGenre(10);
  EXPECT_THAT(artists(manager_), ElementsAre(1, 2));
  EXPECT_THAT(albums(manager_), ElementsAre(1, 2));
  EXPECT_THAT(genres(manager_), ElementsAre(1, 2));
  EXPECT_THAT(playlist_->getTracks(), ElementsAre(one_, two_, one_));
}

TEST(TrackManager, ClearForgetsAllButKeepsWhatItHandedOut) {
  TrackManager manager;
  const Track* const track = addSong(manager, 1, "Kept", 1, "A", 1);
  const Playlist* const playlist = manager.addPlaylist("Kept too");
  manager.clear();
  EXPECT_FALSE(manager.hasTrack(1));
  EXPECT_THAT(trackList(manager), IsEmpty());
  EXPECT_THAT(playlistNames(manager), IsEmpty());
  EXPECT_THAT(artists(manager), IsEmpty());
  EXPECT_THAT(ratings(manager), IsEmpty());
  EXPECT_EQ(manager.getIndex().getArtists().find(1), nullptr);
  EXPECT_EQ(track->getTitle(), "Kept");
  EXPECT_EQ(track->getArtistName(), "A");
  EXPECT_EQ(playlist->getName(), "Kept too");

  addSong(manager, 1, "New", 1, "B");
  EXPECT_EQ(manager.findTrack(1)->getTitle(), "New");
  EXPECT_EQ(manager.getIndex().getArtists().find(1)->name(), "B");
}

}  // namespace
}  // namespace Orvane::test
