#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

#include "tree/album.h"
#include "tree/prefetch.h"

namespace Orvane {

class TrackManager;

// One song of the listener's inventory. An id or a rating of 0 means that it has none.
//
// The title's bytes and the album belong to somebody else and must outlive the track. A track made
// by TrackManager::addTrack has them from the manager.
class Track {
 public:
  Track() = default;
  Track(const Track&) = delete;
  Track& operator=(const Track&) = delete;

  std::string_view getTitle() const { return {title_, titleSize_}; }
  std::uint32_t getMediaId() const { return mediaId_; }
  const NamedId& getArtist() const { return album_->artist(); }
  const Album& getAlbum() const { return *album_; }
  const NamedId& getGenre() const { return album_->genre(); }
  std::string_view getArtistName() const { return getArtist().name(); }
  std::string_view getAlbumName() const { return getAlbum().name(); }
  std::string_view getGenreName() const { return getGenre().name(); }
  std::uint32_t getArtistId() const { return getArtist().id(); }
  std::uint32_t getAlbumId() const { return getAlbum().id(); }
  std::uint32_t getGenreId() const { return getGenre().id(); }
  std::uint32_t getRating() const { return rating_; }

  // What a TrackIndex that has entered the track knows it by; 0 if none has, or if the title or the
  // media id was set since.
  std::uint32_t getNumber() const { return marks_ & kNumber; }

  // A title of 4 GiB or more is cut: a name shows at most 64 bytes of it.
  void setTitle(std::string_view text) {
    title_ = text.data();
    titleSize_ = static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), 0xFFFFFFFF));
    setNumber(0);
  }
  void setMediaId(std::uint32_t value) {
    mediaId_ = value;
    setNumber(0);
  }
  // With its artist and genre.
  void setAlbum(const Album& album) {
    noteChange();
    album_ = &album;
  }
  void setRating(std::uint32_t value) {
    noteChange();
    rating_ = value;
  }

  // Whether any track of this process was ever given another album or rating after it had been
  // registered: what a TrackIndex has entered tracks under may then not be what they have.
  static bool wereAnyChanged() { return wereAnyChanged_; }

  // Says that the title's bytes will soon be looked at.
  void prefetchTitle() const {
    prefetch(title_);
    prefetch(title_ + titleSize_);
  }

 private:
  void noteChange() {
    if ((marks_ & kRegistered) != 0) wereAnyChanged_ = true;
  }
  void setNumber(std::uint32_t number) { marks_ = (marks_ & ~kNumber) | number; }

  friend class TrackIndex;
  friend class TrackManager;

  // In `marks_`. Not bit fields: those are written byte by byte, and a read of the whole right
  // after has to wait.
  static constexpr std::uint32_t kRegistered = 0x80000000;  // some manager owns it
  static constexpr std::uint32_t kPooled = 0x40000000;      // it is part of its manager's store
  static constexpr std::uint32_t kNumber = 0x3FFFFFFF;

  static constexpr NamedId kNoName{0, {}};
  static constexpr Album kNoAlbum{0, {}, kNoName, kNoName};

  static inline std::atomic<bool> wereAnyChanged_ = false;

  const char* title_ = nullptr;
  const Album* album_ = &kNoAlbum;
  std::uint32_t titleSize_ = 0;
  std::uint32_t mediaId_ = 0;
  std::uint32_t rating_ = 0;
  std::uint32_t marks_ = 0;
};

static_assert(sizeof(void*) != 8 || sizeof(Track) == 32, "a listener has millions of these");

// Title, " | ", artist's name, " | ", album's name.
std::ostream& operator<<(std::ostream& out, const Track& track);

}  // namespace Orvane
