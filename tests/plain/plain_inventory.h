// The inventory once more, as plainly as it can be put: standard containers, linear scans. It is
// slow; what it is for is being compared with.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::plain {

struct PlainTrack {
  std::string title;
  std::uint32_t mediaId = 0;
  std::string artistName;
  std::uint32_t artistId = 0;
  std::string albumName;
  std::uint32_t albumId = 0;
  std::string genreName;
  std::uint32_t genreId = 0;
  std::uint32_t rating = 0;
};

struct PlainPlaylist {
  std::list<const PlainTrack*> tracks;
  std::string name;
  std::uint32_t playlistId = 0;
};

using PlainNameMap = std::map<std::uint32_t, std::string>;

// Whether `left` orders before `right`: ASCII letters count as capitals, bytes as signed numbers.
bool plainNameLess(std::string_view left, std::string_view right);

// Orders ids by the names that they have at the moment of each single comparison.
struct LiveNameOrder {
  const PlainNameMap* names = nullptr;
  bool operator()(std::uint32_t left, std::uint32_t right) const;
};

using PlainCategoryIndex =
    std::multimap<std::uint32_t, std::uint32_t, LiveNameOrder>;        // id, media id
using PlainRatingIndex = std::multimap<std::uint32_t, std::uint32_t>;  // rating, media id

struct PlainInventory {
  PlainInventory() = default;
  PlainInventory(const PlainInventory&) = delete;
  PlainInventory& operator=(const PlainInventory&) = delete;

  // What they return lives as long as the inventory, whatever is removed from it.
  const PlainTrack* addTrack(const PlainTrack& fields);
  PlainPlaylist* addPlaylist(std::string_view name, std::uint32_t playlistId);
  bool hasTrack(std::uint32_t mediaId) const { return mediaIds.count(mediaId) != 0; }

  void removeTrack(const PlainTrack* track);
  void removeTrackById(std::uint32_t mediaId);
  void removePlaylist(const PlainPlaylist* playlist);
  void removeGenre(std::uint32_t genreId);
  void removeArtist(std::uint32_t artistId);
  void removeAlbum(std::uint32_t albumId);
  void clear();

  std::list<PlainTrack> ownedTracks;
  std::list<PlainPlaylist> ownedPlaylists;

  std::list<PlainPlaylist*> playlists;
  std::set<std::uint32_t> mediaIds;
  std::vector<const PlainTrack*> trackList;
  std::map<std::uint32_t, const PlainTrack*> tracksById;
  PlainNameMap titles;
  PlainNameMap artistNames;
  PlainNameMap albumNames;
  PlainNameMap genreNames;
  PlainCategoryIndex artistIndex{LiveNameOrder{&artistNames}};
  PlainCategoryIndex albumIndex{LiveNameOrder{&albumNames}};
  PlainCategoryIndex genreIndex{LiveNameOrder{&genreNames}};
  PlainRatingIndex ratingIndex;

 private:
  void removeFromPlaylists(std::uint32_t PlainTrack::*field, std::uint32_t value);
};

}  // namespace Orvane::plain
