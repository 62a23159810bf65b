#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

#include "tree/huge_pages.h"
#include "tree/named_id.h"
#include "tree/prefetch.h"

namespace Orvane {

class TrackManager;

// One song of the listener's inventory. An id or a rating of 0 means that it has none.
//
// The title's bytes, artist, album and genre belong to somebody else and must outlive the track:
// those of a track made by TrackManager::addTrack belong to the manager.
class Track {
 public:
  Track() = default;
  Track(const Track&) = delete;
  Track& operator=(const Track&) = delete;

  std::string_view getTitle() const { return {title_, titleSize_}; }
  std::uint32_t getMediaId() const { return mediaId_; }
  const NamedId& getArtist() const { return *artist_; }
  const NamedId& getAlbum() const { return *album_; }
  const NamedId& getGenre() const { return *genre_; }
  std::string_view getArtistName() const { return artist_->name(); }
  std::string_view getAlbumName() const { return album_->name(); }
  std::string_view getGenreName() const { return genre_->name(); }
  std::uint32_t getArtistId() const { return artist_->id(); }
  std::uint32_t getAlbumId() const { return album_->id(); }
  std::uint32_t getGenreId() const { return genre_->id(); }
  std::uint32_t getRating() const { return rating_; }

  // What a TrackIndex that has entered the track knows it by; 0 if none has, or if the title or the
  // media id was set since.
  std::uint32_t getNumber() const { return number_; }

  // A title of 4 GiB or more is cut: a name shows at most 64 bytes of it.
  void setTitle(std::string_view text) {
    title_ = text.data();
    titleSize_ = static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), 0xFFFFFFFF));
    number_ = 0;
  }
  void setMediaId(std::uint32_t value) {
    mediaId_ = value;
    number_ = 0;
  }
  void setArtist(const NamedId& artist) { artist_ = &artist; }
  void setAlbum(const NamedId& album) { album_ = &album; }
  void setGenre(const NamedId& genre) { genre_ = &genre; }
  void setRating(std::uint32_t value) { rating_ = value; }

 private:
  friend class TrackIndex;
  friend class TrackManager;

  static constexpr NamedId kNone{0, {}};

  const char* title_ = nullptr;
  const NamedId* artist_ = &kNone;
  const NamedId* album_ = &kNone;
  const NamedId* genre_ = &kNone;
  std::uint32_t titleSize_ = 0;
  std::uint32_t mediaId_ = 0;
  std::uint32_t rating_ = 0;
  std::uint32_t number_ : 30 = 0;
  std::uint32_t isRegistered_ : 1 = 0;  // some manager owns it
  std::uint32_t isPooled_ : 1 = 0;      // it is part of its manager's store
};

static_assert(sizeof(void*) != 8 || sizeof(Track) == 48, "a listener has millions of these");

// Asks for all of a track, which may reach into a second line of the cache.
inline void prefetchTrack(const Track* track) {
  prefetch(track);
  prefetch(reinterpret_cast<const char*>(track) + sizeof(Track) - 1);
}

// Tracks by their numbers; there is none with number 0.
using TrackTable = LargeVector<const Track*>;

// Title, " | ", artist's name, " | ", album's name.
std::ostream& operator<<(std::ostream& out, const Track& track);

}  // namespace Orvane
