#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

class Track;
class TrackManager;

// A named sequence of tracks, which it doesn't own. A track may stand in it more than once.
class Playlist {
 public:
  Playlist(std::string_view name, std::uint32_t playlistId)
      : name_(name), playlistId_(playlistId) {}
  Playlist(const Playlist&) = delete;
  Playlist& operator=(const Playlist&) = delete;

  const std::string& getName() const { return name_; }
  std::uint32_t getPlaylistId() const { return playlistId_; }  // 0 when the list files give none
  std::vector<const Track*>& getTracks() { return tracks_; }
  const std::vector<const Track*>& getTracks() const { return tracks_; }

 private:
  friend class TrackManager;

  std::vector<const Track*> tracks_;
  std::string name_;
  std::uint32_t playlistId_;
  bool registered_ = false;  // the manager that owns it marks it so
};

}  // namespace Orvane
