// Making tracks, and showing a manager's lists as ids and names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/track_manager.h"

namespace Orvane::test {

inline Track* addSong(TrackManager& manager, std::uint32_t mediaId, std::string_view title,
                      std::uint32_t id = 0, std::string_view name = "", std::uint32_t rating = 0) {
  return manager.addTrack(title, mediaId, name, id, name, id, name, id, rating);
}

inline std::vector<std::uint32_t> mediaIds(const std::vector<const Track*>& tracks) {
  std::vector<std::uint32_t> ids;
  ids.reserve(tracks.size());
  for (const Track* const track : tracks) ids.push_back(track->getMediaId());
  return ids;
}

inline std::vector<std::uint32_t> trackList(const TrackManager& manager) {
  return mediaIds({manager.tracksBegin(), manager.tracksEnd()});
}

inline std::vector<std::uint32_t> idsIn(const TrackManager& manager,
                                        const CategoryIndex& category) {
  return mediaIds(manager.getIndex().tracksInOrder(category));
}

inline std::vector<std::uint32_t> artists(const TrackManager& manager) {
  return idsIn(manager, manager.getIndex().getArtists());
}
inline std::vector<std::uint32_t> albums(const TrackManager& manager) {
  return idsIn(manager, manager.getIndex().getAlbums());
}
inline std::vector<std::uint32_t> genres(const TrackManager& manager) {
  return idsIn(manager, manager.getIndex().getGenres());
}
inline std::vector<std::uint32_t> ratings(const TrackManager& manager) {
  return idsIn(manager, manager.getIndex().getRatings());
}

inline std::vector<std::string> playlistNames(const TrackManager& manager) {
  std::vector<std::string> names;
  for (auto it = manager.playlistsBegin(); it != manager.playlistsEnd(); ++it) {
    names.push_back((*it)->getName());
  }
  return names;
}

}  // namespace Orvane::test
