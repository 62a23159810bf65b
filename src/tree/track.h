#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

#include "tree/huge_pages.h"
#include "tree/prefetch.h"

namespace Orvane {

class TrackManager;

// One song of the listener's inventory. An id or a rating of 0 means that it has none.
//
// The texts belong to somebody else and must outlive the track: those of a track made by
// TrackManager::addTrack belong to the manager, which lets tracks share names.
class Track {
 public:
  Track() = default;
  Track(const Track&) = delete;
  Track& operator=(const Track&) = delete;

  std::string_view getTitle() const { return {title_, titleSize_}; }
  std::string_view getArtistName() const { return {artistName_, artistNameSize_}; }
  std::string_view getAlbumName() const { return {albumName_, albumNameSize_}; }
  std::string_view getGenreName() const { return {genreName_, genreNameSize_}; }
  std::uint32_t getMediaId() const { return mediaId_; }
  std::uint32_t getArtistId() const { return artistId_; }
  std::uint32_t getAlbumId() const { return albumId_; }
  std::uint32_t getGenreId() const { return genreId_; }
  std::uint32_t getRating() const { return rating_; }

  // What a TrackIndex that has entered the track knows it by; 0 if none has, or if the title or the
  // media id was set since.
  std::uint32_t getNumber() const { return number_; }

  void setTitle(std::string_view text) {
    set(text, title_, titleSize_);
    number_ = 0;
  }
  void setArtistName(std::string_view text) { set(text, artistName_, artistNameSize_); }
  void setAlbumName(std::string_view text) { set(text, albumName_, albumNameSize_); }
  void setGenreName(std::string_view text) { set(text, genreName_, genreNameSize_); }
  void setMediaId(std::uint32_t value) {
    mediaId_ = value;
    number_ = 0;
  }
  void setArtistId(std::uint32_t value) { artistId_ = value; }
  void setAlbumId(std::uint32_t value) { albumId_ = value; }
  void setGenreId(std::uint32_t value) { genreId_ = value; }
  void setRating(std::uint32_t value) { rating_ = value; }

 private:
  friend class TrackIndex;
  friend class TrackManager;

  // A text of 4 GiB or more is cut: a name shows at most 64 bytes of it.
  static void set(std::string_view text, const char*& data, std::uint32_t& size) {
    data = text.data();
    size = static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), 0xFFFFFFFF));
  }

  const char* title_ = nullptr;
  const char* artistName_ = nullptr;
  const char* albumName_ = nullptr;
  const char* genreName_ = nullptr;
  std::uint32_t titleSize_ = 0;
  std::uint32_t artistNameSize_ = 0;
  std::uint32_t albumNameSize_ = 0;
  std::uint32_t genreNameSize_ = 0;
  std::uint32_t mediaId_ = 0;
  std::uint32_t artistId_ = 0;
  std::uint32_t albumId_ = 0;
  std::uint32_t genreId_ = 0;
  std::uint32_t rating_ = 0;
  std::uint32_t number_ : 30 = 0;
  std::uint32_t isRegistered_ : 1 = 0;  // some manager owns it
  std::uint32_t isPooled_ : 1 = 0;      // it is part of its manager's store
};

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
