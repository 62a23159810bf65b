#include "plain/plain_inventory.h"

#include <algorithm>
#include <cstddef>

namespace Orvane::plain {
namespace {

int folded(char character) {
  const char capital =
      character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
  return static_cast<signed char>(capital);
}

template <typename Index>
void eraseMediaId(Index& index, std::uint32_t mediaId) {
  for (auto entry = index.begin(); entry != index.end();) {
    entry = entry->second == mediaId ? index.erase(entry) : std::next(entry);
  }
}

// Takes every entry of `id` out of `index` and returns their media ids.
std::vector<std::uint32_t> takeEntries(PlainCategoryIndex& index, std::uint32_t id) {
  std::vector<std::uint32_t> taken;
  for (auto entry = index.begin(); entry != index.end();) {
    if (entry->first == id) {
      taken.push_back(entry->second);
      entry = index.erase(entry);
    } else {
      ++entry;
    }
  }
  return taken;
}

}  // namespace

bool plainNameLess(std::string_view left, std::string_view right) {
  for (std::size_t i = 0; i < left.size() && i < right.size(); ++i) {
    if (folded(left[i]) != folded(right[i])) return folded(left[i]) < folded(right[i]);
  }
  return left.size() < right.size();
}

bool LiveNameOrder::operator()(std::uint32_t left, std::uint32_t right) const {
  return plainNameLess(names->at(left), names->at(right));
}

const PlainTrack* PlainInventory::addTrack(const PlainTrack& fields) {
  const PlainTrack* const track = &ownedTracks.emplace_back(fields);
  const std::uint32_t mediaId = track->mediaId;
  if (!mediaIds.insert(mediaId).second) return track;
  trackList.push_back(track);
  tracksById[mediaId] = track;
  titles[mediaId] = track->title;
  if (track->genreId != 0) {
    genreNames[track->genreId] = track->genreName;
    genreIndex.insert({track->genreId, mediaId});
  }
  if (track->artistId != 0) {
    artistNames[track->artistId] = track->artistName;
    artistIndex.insert({track->artistId, mediaId});
  }
  if (track->albumId != 0) {
    albumNames[track->albumId] = track->albumName;
    albumIndex.insert({track->albumId, mediaId});
  }
  if (track->rating != 0) ratingIndex.insert({track->rating, mediaId});
  return track;
}

PlainPlaylist* PlainInventory::addPlaylist(std::string_view name, std::uint32_t playlistId) {
  PlainPlaylist& playlist = ownedPlaylists.emplace_back();
  playlist.name = name;
  playlist.playlistId = playlistId;
  playlists.push_back(&playlist);
  return &playlist;
}

void PlainInventory::removeTrack(const PlainTrack* track) {
  const std::uint32_t mediaId = track->mediaId;
  for (PlainPlaylist* const playlist : playlists) playlist->tracks.remove(track);
  mediaIds.erase(mediaId);
  // The list keeps its length, and stale pointers at its end, on purpose.
  static_cast<void>(
      std::remove_if(trackList.begin(), trackList.end(),
                     [mediaId](const PlainTrack* entry) { return entry->mediaId == mediaId; }));
  eraseMediaId(genreIndex, mediaId);
  eraseMediaId(artistIndex, mediaId);
  eraseMediaId(albumIndex, mediaId);
  eraseMediaId(ratingIndex, mediaId);
  titles.erase(mediaId);
  tracksById.erase(mediaId);
}

void PlainInventory::removeTrackById(std::uint32_t mediaId) {
  const PlainTrack* const track = tracksById[mediaId];
  if (track != nullptr) removeTrack(track);
}

void PlainInventory::removePlaylist(const PlainPlaylist* playlist) {
  for (auto entry = playlists.begin(); entry != playlists.end();) {
    entry = *entry == playlist ? playlists.erase(entry) : std::next(entry);
  }
}

void PlainInventory::removeGenre(std::uint32_t genreId) {
  for (const std::uint32_t mediaId : takeEntries(genreIndex, genreId)) {
    eraseMediaId(artistIndex, mediaId);
    eraseMediaId(albumIndex, mediaId);
  }
  removeFromPlaylists(&PlainTrack::genreId, genreId);
}

void PlainInventory::removeArtist(std::uint32_t artistId) {
  for (const std::uint32_t mediaId : takeEntries(artistIndex, artistId)) {
    eraseMediaId(genreIndex, mediaId);
    eraseMediaId(albumIndex, mediaId);
  }
  removeFromPlaylists(&PlainTrack::artistId, artistId);
}

void PlainInventory::removeAlbum(std::uint32_t albumId) {
  for (const std::uint32_t mediaId : takeEntries(albumIndex, albumId)) {
    eraseMediaId(genreIndex, mediaId);
    eraseMediaId(artistIndex, mediaId);
  }
  removeFromPlaylists(&PlainTrack::albumId, albumId);
}

void PlainInventory::clear() {
  mediaIds.clear();
  trackList.clear();
  genreIndex.clear();
  artistIndex.clear();
  albumIndex.clear();
  ratingIndex.clear();
  titles.clear();
  genreNames.clear();
  artistNames.clear();
  albumNames.clear();
  playlists.clear();
  tracksById.clear();
}

void PlainInventory::removeFromPlaylists(std::uint32_t PlainTrack::*field, std::uint32_t value) {
  for (PlainPlaylist* const playlist : playlists) {
    playlist->tracks.remove_if(
        [field, value](const PlainTrack* track) { return track->*field == value; });
  }
}

}  // namespace Orvane::plain
