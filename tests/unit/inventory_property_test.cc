// The manager, the list files' reader, the menu builder, the ordering and both writers on random
// inventories, against the plain rendering of the same rules.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "random_inventory.h"
#include "same_as_plain.h"
#include "test_support.h"

namespace Orvane::test {
namespace {

constexpr std::uint32_t kInventories = 2000;

// A manager and a plain inventory that get the same calls.
class Both {
 public:
  void addTrack(const plain::PlainTrack& track) {
    tracks_.emplace_back(manager.addTrack(track.title, track.mediaId, track.artistName,
                                          track.artistId, track.albumName, track.albumId,
                                          track.genreName, track.genreId, track.rating),
                         inventory.addTrack(track));
  }
  void addPlaylist(const std::string& name, std::uint32_t playlistId) {
    playlists_.emplace_back(manager.addPlaylist(name, playlistId),
                            inventory.addPlaylist(name, playlistId));
  }
  void addEntry(std::size_t playlist, std::size_t track) {
    if (playlists_.empty() || tracks_.empty()) return;
    const auto& [mine, plain] = playlists_[playlist % playlists_.size()];
    mine->getTracks().push_back(tracks_[track % tracks_.size()].first);
    plain->tracks.push_back(tracks_[track % tracks_.size()].second);
  }
  void removeTrack(std::size_t track) {
    if (tracks_.empty()) return;
    manager.removeTrack(tracks_[track % tracks_.size()].first);
    inventory.removeTrack(tracks_[track % tracks_.size()].second);
  }
  void removePlaylist(std::size_t playlist) {
    if (playlists_.empty()) return;
    manager.removePlaylist(playlists_[playlist % playlists_.size()].first);
    inventory.removePlaylist(playlists_[playlist % playlists_.size()].second);
  }

  TrackManager manager;
  plain::PlainInventory inventory;

 private:
  std::vector<std::pair<Track*, const plain::PlainTrack*>> tracks_;
  std::vector<std::pair<Playlist*, plain::PlainPlaylist*>> playlists_;
};

void fill(RandomInventory& random, Both& both) {
  for (std::size_t tracks = random.below(40); tracks-- > 0;) both.addTrack(random.track());
  for (std::size_t playlists = random.below(5); playlists-- > 0;) {
    both.addPlaylist(random.name(), random.id());
  }
  for (std::size_t entries = random.below(12); entries-- > 0;) {
    both.addEntry(random.below(100), random.below(100));
  }
}

void remove(RandomInventory& random, Both& both) {
  const std::uint32_t id = random.id();
  switch (random.below(7)) {
    case 0: {
      const std::uint32_t mediaId = random.mediaId();
      both.manager.removeTrackById(mediaId);
      both.inventory.removeTrackById(mediaId);
      return;
    }
    case 1:
      both.removeTrack(random.below(100));
      return;
    case 2:
      both.manager.removeArtist(id);
      both.inventory.removeArtist(id);
      return;
    case 3:
      both.manager.removeAlbum(id);
      both.inventory.removeAlbum(id);
      return;
    case 4:
      both.manager.removeGenre(id);
      both.inventory.removeGenre(id);
      return;
    case 5:
      both.removePlaylist(random.below(100));
      return;
    default:
      if (!random.oneIn(6)) return;
      both.manager.clear();
      both.inventory.clear();
  }
}

TEST(InventoryProperty, FilledThroughTheManager) {
  for (std::uint32_t seed = 0; seed < kInventories; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomInventory random(seed);
    Both both;
    fill(random, both);
    ASSERT_EQ(plain::differenceOf(both.manager, both.inventory), "");
    ASSERT_NO_FATAL_FAILURE(expectSameMenus(both.manager, both.inventory));
  }
}

TEST(InventoryProperty, FilledAgainAfterRemovals) {
  for (std::uint32_t seed = 0; seed < kInventories; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomInventory random(seed);
    Both both;
    for (std::size_t rounds = 1 + random.below(6); rounds-- > 0;) {
      fill(random, both);
      for (std::size_t removals = random.below(6); removals-- > 0;) {
        remove(random, both);
        ASSERT_EQ(plain::differenceOf(both.manager, both.inventory), "");
      }
    }
    ASSERT_NO_FATAL_FAILURE(expectSameMenus(both.manager, both.inventory));
  }
}

// Albums with names, artists and genres that mostly stay.
TEST(InventoryProperty, LibrariesAsInLife) {
  for (std::uint32_t seed = 0; seed < kInventories; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomInventory random(seed);
    std::vector<plain::PlainTrack> albums(1 + random.below(12));
    const std::size_t artists = 1 + random.below(6);
    const bool areArtistsNamedAlike = random.oneIn(4);
    for (std::uint32_t album = 0; album < albums.size(); ++album) {
      plain::PlainTrack& track = albums[album];
      track.artistId = static_cast<std::uint32_t>(1 + random.below(artists));
      track.artistName = areArtistsNamedAlike ? "a" : "artist " + std::to_string(track.artistId);
      track.albumId = 1 + album;
      track.albumName = random.name();
      track.genreId = 1 + track.artistId % 3;
      track.genreName = "genre " + std::to_string(track.genreId);
    }
    const std::size_t oddOnes = random.oneIn(3) ? 1000 : 5 + random.below(60);
    Both both;
    for (std::uint32_t id = 0; id < 60; ++id) {
      plain::PlainTrack track = albums[random.below(albums.size())];
      track.mediaId = id;
      track.title = random.name();
      track.rating = random.rating();
      if (random.oneIn(oddOnes)) {
        const plain::PlainTrack other = random.track();
        switch (random.below(7)) {
          case 0:
            track.artistId = static_cast<std::uint32_t>(random.below(artists + 1));
            break;
          case 1:
            track.artistName = "ARTIST " + std::to_string(track.artistId);
            break;
          case 2:
            track.albumName = other.albumName;
            break;
          case 3:
            track.albumId = 0;
            break;
          case 4:
            track.genreName = other.genreName;
            break;
          case 5:
            track.mediaId = 0;
            break;
          default:
            track = other;
        }
      }
      both.addTrack(track);
    }
    ASSERT_EQ(plain::differenceOf(both.manager, both.inventory), "");
    ASSERT_NO_FATAL_FAILURE(expectSameMenus(both.manager, both.inventory));
  }
}

TEST(InventoryProperty, ReadFromListFiles) {
  const TempDir dir;
  const std::string tracksPath = dir / "tracks.txt";
  const std::string playlistsPath = dir / "playlists.txt";
  for (std::uint32_t seed = 0; seed < kInventories; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomInventory random(seed);
    writeFile(tracksPath, random.tracksFile());
    writeFile(playlistsPath, random.playlistsFile());
    const std::string tracks = random.oneIn(20) ? dir / "missing" : tracksPath;
    const std::string playlists = random.oneIn(20) ? dir / "" : playlistsPath;
    const bool withPlaylistIds = !random.oneIn(4);

    ASSERT_NO_FATAL_FAILURE(expectSameReading(tracks, playlists, withPlaylistIds));
  }
}

// Long lists are sorted another way than short ones.
TEST(InventoryProperty, LongListsOfEqualAndOfDifferentTitles) {
  for (const std::uint32_t titles : {1U, 7U, 3000U, 1000000U}) {
    SCOPED_TRACE(std::to_string(titles) + " titles");
    std::mt19937 random(titles);
    Both both;
    for (std::uint32_t i = 0; i < 6000; ++i) {
      plain::PlainTrack track;
      track.mediaId = i;
      track.title = "a title of some length " + std::to_string(random() % titles);
      track.artistId = 1 + random() % 2;
      track.artistName = "Singer";
      track.albumId = 1;
      track.albumName = "Record";
      track.genreId = static_cast<std::uint32_t>(1 + random() % 9);
      track.genreName = "Style";
      both.addTrack(track);
    }
    Trees trees;
    ASSERT_NO_FATAL_FAILURE(buildSameTrees(both.manager, both.inventory, trees));
  }
}

}  // namespace
}  // namespace Orvane::test
