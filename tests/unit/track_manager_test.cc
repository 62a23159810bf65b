#include "inventory/track_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "track_lists.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TrackManager, StartsEmpty) {
  const TrackManager manager;
  EXPECT_FALSE(manager.hasTrack(0));
  EXPECT_EQ(manager.findTrack(0), nullptr);
  EXPECT_THAT(trackList(manager), IsEmpty());
  EXPECT_THAT(playlistNames(manager), IsEmpty());
  EXPECT_THAT(artists(manager), IsEmpty());
  EXPECT_THAT(ratings(manager), IsEmpty());
}

TEST(TrackManager, AddTrackKeepsEachFieldAndCopiesTexts) {
  TrackManager manager;
  std::string title = "Title";
  std::string artist = "Artist";
  std::string album = "Album";
  std::string genre = "Genre";
  const Track* const track = manager.addTrack(title, 1, artist, 2, album, 3, genre, 4, 5);
  for (std::string* const text : {&title, &artist, &album, &genre}) text->assign("overwritten");

  EXPECT_EQ(track->getTitle(), "Title");
  EXPECT_EQ(track->getMediaId(), 1U);
  EXPECT_EQ(track->getArtistName(), "Artist");
  EXPECT_EQ(track->getArtistId(), 2U);
  EXPECT_EQ(track->getAlbumName(), "Album");
  EXPECT_EQ(track->getAlbumId(), 3U);
  EXPECT_EQ(track->getGenreName(), "Genre");
  EXPECT_EQ(track->getGenreId(), 4U);
  EXPECT_EQ(track->getRating(), 5U);
  EXPECT_EQ(manager.findTrack(1), track);
}

TEST(TrackManager, TracksShareTheNamesOfTheirIds) {
  TrackManager manager;
  const std::string name = "name";
  const Track& one = *manager.addTrack("t", 1, name, 1, name, 1, name, 1, 0);
  const Track& two = *manager.addTrack("t", 2, name, 1, name, 1, name, 1, 0);
  EXPECT_EQ(one.getArtistName().data(), two.getArtistName().data());
  EXPECT_EQ(one.getAlbumName().data(), two.getAlbumName().data());
  EXPECT_EQ(one.getGenreName().data(), two.getGenreName().data());
  const Track& other = *manager.addTrack("t", 3, "other", 1, "other", 1, "other", 1, 0);
  EXPECT_EQ(other.getArtistName(), "other");
  EXPECT_EQ(one.getArtistName(), "name");
}

TEST(TrackManager, AlbumsShareTheNamesOfTheirIds) {
  TrackManager manager;
  const Track& one = *manager.addTrack("t", 1, "A", 1, "One", 2, "G", 3, 0);
  const Track& two = *manager.addTrack("t", 2, "A", 1, "Two", 4, "G", 3, 0);
  EXPECT_EQ(&one.getArtist(), &two.getArtist());
  EXPECT_EQ(&one.getGenre(), &two.getGenre());
}

TEST(TrackManager, TracksShareTheirAlbum) {
  TrackManager manager;
  const Album& one = manager.addTrack("t", 1, "A", 1, "Record", 2, "G", 3, 0)->getAlbum();
  EXPECT_EQ(&manager.addTrack("t", 2, "A", 1, "Record", 2, "G", 3, 0)->getAlbum(), &one);
  EXPECT_NE(&manager.addTrack("t", 3, "A", 1, "Record", 9, "G", 3, 0)->getAlbum(), &one);
  EXPECT_NE(&manager.addTrack("t", 4, "A", 1, "Recorder", 2, "G", 3, 0)->getAlbum(), &one);
}

// The next track with the same artist and genre shares the new album.
TEST(TrackManager, AlbumsAreToldApartByArtistAndGenre) {
  struct Names {
    std::uint32_t artistId;
    std::string_view artist;
    std::uint32_t genreId;
    std::string_view genre;
  };
  TrackManager manager;
  const auto add = [&](std::uint32_t mediaId, const Names& names) -> const Track& {
    return *manager.addTrack("t", mediaId, names.artist, names.artistId, "Record", 7, names.genre,
                             names.genreId, 0);
  };
  const Album& first = add(1, {1, "A", 3, "G"}).getAlbum();
  std::uint32_t mediaId = 1;
  for (const Names& names :
       {Names{2, "A", 3, "G"}, {1, "B", 3, "G"}, {1, "A", 4, "G"}, {1, "A", 3, "H"}}) {
    const Track& track = add(++mediaId, names);
    EXPECT_EQ(track.getArtistId(), names.artistId);
    EXPECT_EQ(track.getArtistName(), names.artist);
    EXPECT_EQ(track.getGenreId(), names.genreId);
    EXPECT_EQ(track.getGenreName(), names.genre);
    EXPECT_EQ(track.getAlbumName().data(), first.name().data()) << "no copy of the name";
    EXPECT_EQ(&add(++mediaId, names).getAlbum(), &track.getAlbum());
  }
}

TEST(TrackManager, AlbumsWithoutAnIdAreEachTracksOwn) {
  TrackManager manager;
  const Track& one = *manager.addTrack("t", 1, "A", 1, "One", 0, "G", 3, 0);
  const Track& two = *manager.addTrack("t", 2, "B", 2, "Two", 0, "H", 4, 0);
  EXPECT_EQ(one.getAlbumName(), "One");
  EXPECT_EQ(one.getArtistName(), "A");
  EXPECT_EQ(two.getAlbumName(), "Two");
  EXPECT_EQ(two.getGenreName(), "H");
}

TEST(TrackManager, ForgottenIdsFindNoTrack) {
  TrackManager manager;
  addSong(manager, 1, "One", 5, "Abel", 2);
  Playlist& playlist = *manager.addPlaylist("list");
  playlist.getTracks().push_back(manager.findTrack(1));
  manager.forgetIds();
  EXPECT_FALSE(manager.hasTrack(1));
  EXPECT_EQ(manager.findTrack(1), nullptr);
  EXPECT_THAT(trackList(manager), ElementsAre(1));
  EXPECT_THAT(artists(manager), ElementsAre(1));
  EXPECT_THAT(ratings(manager), ElementsAre(1));
  EXPECT_THAT(playlistNames(manager), ElementsAre("list"));
  EXPECT_THAT(mediaIds(playlist.getTracks()), ElementsAre(1));
}

TEST(TrackManager, TrackListIsGoneThroughTrackByTrack) {
  TrackManager manager;
  const Track* const one = addSong(manager, 1, "One");
  const Track* const two = addSong(manager, 2, "Two");
  auto it = manager.tracksBegin();
  EXPECT_EQ(*it++, one);
  EXPECT_EQ(*it, two);
  EXPECT_EQ(manager.tracksEnd() - it, 1);
  EXPECT_EQ(++it, manager.tracksEnd());
}

TEST(TrackManager, FirstTrackOfAMediaIdCounts) {
  TrackManager manager;
  const Track* const first = addSong(manager, 7, "First", 1, "Abel", 2);
  const Track* const second = addSong(manager, 7, "Second", 2, "Bea", 3);
  addSong(manager, 8, "Other", 1, "Abel");

  EXPECT_NE(first, second);
  EXPECT_TRUE(manager.hasTrack(7));
  EXPECT_EQ(manager.findTrack(7), first);
  EXPECT_THAT(trackList(manager), ElementsAre(7, 8));
  EXPECT_THAT(artists(manager), ElementsAre(7, 8));
  EXPECT_THAT(albums(manager), ElementsAre(7, 8));
  EXPECT_THAT(genres(manager), ElementsAre(7, 8));
  EXPECT_THAT(ratings(manager), ElementsAre(7));
  EXPECT_EQ(manager.getIndex().getArtists().find(2), nullptr);
  EXPECT_EQ(second->getTitle(), "Second");
}

TEST(TrackManager, IdOrRatingZeroIsInNoCategory) {
  TrackManager manager;
  manager.addTrack("no artist", 1, "Name", 0, "Name", 9, "Name", 9, 1);
  manager.addTrack("no album", 2, "Name", 9, "Name", 0, "Name", 9, 1);
  manager.addTrack("no genre", 3, "Name", 9, "Name", 9, "Name", 0, 1);
  manager.addTrack("no rating", 4, "Name", 9, "Name", 9, "Name", 9, 0);
  EXPECT_THAT(artists(manager), ElementsAre(2, 3, 4));
  EXPECT_THAT(albums(manager), ElementsAre(1, 3, 4));
  EXPECT_THAT(genres(manager), ElementsAre(1, 2, 4));
  EXPECT_THAT(ratings(manager), ElementsAre(1, 2, 3));
}

TEST(TrackManager, OrdersByNameRegardlessOfCase) {
  TrackManager manager;
  addSong(manager, 1, "1", 10, "bear");
  addSong(manager, 2, "2", 20, "Ape");
  addSong(manager, 3, "3", 30, "BEAR");
  addSong(manager, 4, "4", 10, "bear");
  addSong(manager, 5, "5", 40, "Be");
  EXPECT_THAT(artists(manager), ElementsAre(2, 5, 1, 3, 4));
  EXPECT_THAT(albums(manager), ElementsAre(2, 5, 1, 3, 4));
  EXPECT_THAT(genres(manager), ElementsAre(2, 5, 1, 3, 4));
}

TEST(TrackManager, BytesAbove127ComeFirst) {
  TrackManager manager;
  addSong(manager, 1, "1", 1, "A");
  addSong(manager, 2, "2", 2, "\xFF");
  addSong(manager, 3, "3", 3, "\x80");
  addSong(manager, 4, "4", 4, std::string(1, '\0'));
  addSong(manager, 5, "5", 5, "");
  EXPECT_THAT(artists(manager), ElementsAre(5, 3, 2, 4, 1));
}

TEST(TrackManager, OrdersRatingsAsUnsignedNumbers) {
  TrackManager manager;
  addSong(manager, 1, "1", 0, "", 4294967295);
  addSong(manager, 2, "2", 0, "", 10);
  addSong(manager, 3, "3", 0, "", 9);
  addSong(manager, 4, "4", 0, "", 10);
  EXPECT_THAT(ratings(manager), ElementsAre(3, 2, 4, 1));
}

TEST(TrackManager, NewNameOfAnIdPlacesOnlyLaterEntries) {
  TrackManager manager;
  addSong(manager, 1, "1", 1, "Mo");
  addSong(manager, 2, "2", 2, "Bo");
  addSong(manager, 3, "3", 1, "Al");
  EXPECT_EQ(manager.getIndex().getArtists().find(1)->name(), "Al");
  EXPECT_THAT(artists(manager), ElementsAre(2, 1, 3));
}

TEST(TrackManager, ContainsTrackGoesByMediaId) {
  TrackManager manager;
  const Track* const track = addSong(manager, 5, "5");
  Track other;
  other.setMediaId(5);
  Track unknown;
  unknown.setMediaId(6);
  EXPECT_TRUE(manager.containsTrack(other));
  EXPECT_FALSE(manager.containsTrack(unknown));
  EXPECT_EQ(manager.countRegisteredTracks({track, &other, &unknown, track}), 3U);
  EXPECT_EQ(manager.countRegisteredTracks({}), 0U);
}

TEST(TrackManager, PlaylistsHaveTheirIdOrZero) {
  TrackManager manager;
  const Playlist* const plain = manager.addPlaylist("Plain");
  const Playlist* const numbered = manager.addPlaylist("Numbered", 4294967295);
  EXPECT_EQ(plain->getPlaylistId(), 0U);
  EXPECT_EQ(numbered->getPlaylistId(), 4294967295U);
  EXPECT_THAT(playlistNames(manager), ElementsAre("Plain", "Numbered"));
}

TEST(TrackManager, RegisteringTwiceIsTold) {
  TrackManager manager;
  auto track = std::make_unique<Track>();
  track->setMediaId(3);
  Track* const registered = track.release();
  EXPECT_TRUE(manager.registerTrack(registered));
  EXPECT_FALSE(manager.registerTrack(registered));
  EXPECT_THAT(trackList(manager), ElementsAre(3));

  Playlist* const playlist = std::make_unique<Playlist>("Twice", 1).release();
  EXPECT_TRUE(manager.registerPlaylist(playlist));
  EXPECT_FALSE(manager.registerPlaylist(playlist));
  EXPECT_THAT(playlistNames(manager), ElementsAre("Twice", "Twice"));
  manager.removePlaylist(playlist);
  EXPECT_THAT(playlistNames(manager), IsEmpty());
}

TEST(TrackManager, SecondTrackOfAnIdIsNewAllTheSame) {
  TrackManager manager;
  addSong(manager, 3, "first");
  auto track = std::make_unique<Track>();
  track->setMediaId(3);
  EXPECT_TRUE(manager.registerTrack(track.release()));
  EXPECT_THAT(trackList(manager), ElementsAre(3));
}

TEST(TrackManager, TakesTitlesThatAreInItsStoreAndCopiesAllOthers) {
  TrackManager manager;
  const std::string_view titles = "beforewithinbehind";
  char* const place = manager.getTitleStore().allocate(titles.size());
  std::ranges::copy(titles, place);
  const std::string_view stored(place, titles.size());
  manager.takeTitlesIn(stored.substr(6, 6));
  const auto isTaken = [&](std::string_view title) {
    const Track& track = *manager.addTrack(title, 1, "a", 2, "b", 3, "c", 4, 0);
    EXPECT_EQ(track.getTitle(), title);
    return track.getTitle().data() == title.data();
  };
  EXPECT_TRUE(isTaken(stored.substr(6, 6)));
  EXPECT_TRUE(isTaken(stored.substr(11, 1)));
  EXPECT_FALSE(isTaken(stored.substr(5, 3)));
  EXPECT_FALSE(isTaken(stored.substr(11, 2)));
  EXPECT_FALSE(isTaken(stored.substr(12, 1)));
  EXPECT_FALSE(isTaken("another"));
  manager.takeTitlesIn({});
  EXPECT_FALSE(isTaken(stored.substr(6, 6)));
}

// What a derived manager watches for.
class WatchingManager : public TrackManager {
 public:
  bool registerTrack(Track* track) override {
    ++tracks;
    return TrackManager::registerTrack(track);
  }
  bool registerPlaylist(Playlist* playlist) override {
    ++playlists;
    return TrackManager::registerPlaylist(playlist);
  }

  int tracks = 0;
  int playlists = 0;
};

TEST(TrackManager, AddingGoesThroughRegistering) {
  WatchingManager manager;
  addSong(manager, 1, "1");
  addSong(manager, 1, "again");
  EXPECT_EQ(manager.tracks, 2);
  manager.addPlaylist("a");
  manager.addPlaylist("b", 1);
  EXPECT_EQ(manager.playlists, 2);
}

TEST(Track, IsStreamedAsTitleArtistAndAlbum) {
  Track track;
  track.setTitle("Song");
  const NamedId artist(1, "Singer");
  const NamedId genre(3, "Unseen");
  const Album album(2, "Record", artist, genre);
  track.setAlbum(album);
  std::ostringstream out;
  out << track;
  EXPECT_EQ(out.str(), "Song | Singer | Record");
}

TEST(TrackManager, ExpectingMoreThanThereIsMemoryForDoesNoHarm) {
  TrackManager manager;
  for (const std::uint32_t mediaId : {2U, 1U, 3U}) {  // no room is made for ids that only count up
    manager.addTrack("title", mediaId, "artist", 2, "album", 3, "genre", 4, 0);
    manager.expectTracks(std::size_t{1} << 45);
  }
  for (const std::uint32_t id : {1U, 2U, 3U}) EXPECT_TRUE(manager.hasTrack(id)) << id;
}

}  // namespace
}  // namespace Orvane::test
