#include "inventory/track_manager.h"

#include <algorithm>
#include <new>
#include <type_traits>

namespace Orvane {

TrackManager::TrackManager() : index_(std::make_unique<TrackIndex>()) {}

TrackManager::~TrackManager() = default;

template <typename Condition>
void TrackManager::removeFromPlaylists(Condition condition) {
  for (Playlist* playlist : playlists_) std::erase_if(playlist->getTracks(), condition);
}

void TrackManager::removeTrack(const Track* track) {
  removeFromPlaylists([=](const Track* entry) { return entry == track; });
  index_->remove(track->getMediaId());
}

void TrackManager::removeTrackById(std::uint32_t mediaId) {
  if (const Track* const track = index_->findOrEnter(mediaId)) removeTrack(track);
}

bool TrackManager::containsTrack(const Track& track) const {
  return hasTrack(track.getMediaId());
}

bool TrackManager::hasTrack(std::uint32_t mediaId) const {
  return index_->has(mediaId);
}

std::string_view TrackManager::keepTitle(std::string_view title) {
  // Addresses of different objects compare as numbers only.
  const auto place = reinterpret_cast<std::uintptr_t>(title.data());
  const auto begin = reinterpret_cast<std::uintptr_t>(titlesToTake_.data());
  const std::size_t offset = place - begin;  // large where it is before
  const bool isKept =
      offset < titlesToTake_.size() && title.size() <= titlesToTake_.size() - offset;
  return isKept ? title : ownTitles_.keep(title);
}

// Makes a NamedId, or what derives from it, with the name right behind it.
template <typename Named, typename... Rest>
const Named& TrackManager::make(const Given& given, const Rest&... rest) {
  static_assert(std::is_trivially_destructible_v<Named>);
  void* const place = ownNames_.allocate(sizeof(Named) + given.name.size(), alignof(Named));
  char* const bytes = static_cast<char*>(place) + sizeof(Named);
  std::copy(given.name.begin(), given.name.end(), bytes);
  return *new (place) Named(given.id, {bytes, given.name.size()}, rest...);
}

// What the id was last entered with, if that has the name, otherwise a new one.
const NamedId& TrackManager::keep(const CategoryIndex& category, const Given& given) {
  const NamedId* const known = category.find(given.id);
  return known != nullptr && given.is(*known) ? *known : make<NamedId>(given);
}

// The same for an album, which is most often known with its artist and its genre.
const Album& TrackManager::keepAlbum(const Given& album, const Given& artist, const Given& genre) {
  const Album* const known = index_->findAlbum(album.id);
  const bool isNamed = known != nullptr && album.is(*known);
  if (isNamed && artist.is(known->artist()) && genre.is(known->genre())) return *known;
  const NamedId& itsArtist = keep(index_->getArtists(), artist);
  const NamedId& itsGenre = keep(index_->getGenres(), genre);
  if (!isNamed) return make<Album>(album, itsArtist, itsGenre);
  void* const place = ownNames_.allocate(sizeof(Album), alignof(Album));
  return *new (place) Album(album.id, known->name(), itsArtist, itsGenre);
}

Track* TrackManager::addTrack(std::string_view title, std::uint32_t mediaId,
                              std::string_view artistName, std::uint32_t artistId,
                              std::string_view albumName, std::uint32_t albumId,
                              std::string_view genreName, std::uint32_t genreId,
                              std::uint32_t rating) {
  static_assert(std::is_trivially_destructible_v<Track>);
  Track* const track = new (ownTracks_.allocate(sizeof(Track), alignof(Track))) Track();
  track->setTitle(keepTitle(title));
  track->setMediaId(mediaId);
  track->setAlbum(keepAlbum({albumId, albumName}, {artistId, artistName}, {genreId, genreName}));
  track->setRating(rating);
  track->marks_ |= Track::kPooled;
  registerTrack(track);
  return track;
}

Playlist* TrackManager::addPlaylist(std::string_view name) {
  return addPlaylist(name, 0);
}

Playlist* TrackManager::addPlaylist(std::string_view name, std::uint32_t playlistId) {
  auto playlist = std::make_unique<Playlist>(name, playlistId);
  Playlist* const added = playlist.get();
  registerPlaylist(playlist.release());
  return added;
}

void TrackManager::removePlaylist(const Playlist* playlist) {
  std::erase(playlists_, playlist);
}

void TrackManager::removeCategory(CategoryIndex& category, std::uint32_t id,
                                  std::uint32_t (Track::*idOf)() const) {
  index_->removeCategory(category, id);
  removeFromPlaylists([=](const Track* track) { return (track->*idOf)() == id; });
}

void TrackManager::removeGenre(std::uint32_t genreId) {
  removeCategory(index_->getGenres(), genreId, &Track::getGenreId);
}

void TrackManager::removeArtist(std::uint32_t artistId) {
  removeCategory(index_->getArtists(), artistId, &Track::getArtistId);
}

void TrackManager::removeAlbum(std::uint32_t albumId) {
  removeCategory(index_->getAlbums(), albumId, &Track::getAlbumId);
}

void TrackManager::clear() {
  index_->clear();
  playlists_.clear();
}

bool TrackManager::registerTrack(Track* track) {
  const bool isNew = (track->marks_ & Track::kRegistered) == 0;
  if (isNew && (track->marks_ & Track::kPooled) == 0) {
    std::unique_ptr<Track> owned(track);
    trackSet_.push_back(std::move(owned));
  }
  track->marks_ |= Track::kRegistered;
  index_->add(*track);
  return isNew;
}

bool TrackManager::registerPlaylist(Playlist* playlist) {
  const bool isNew = !playlist->registered_;
  if (isNew) {
    std::unique_ptr<Playlist> owned(playlist);
    playlistSet_.push_back(std::move(owned));
    playlist->registered_ = true;
  }
  playlists_.push_back(playlist);
  return isNew;
}

std::size_t TrackManager::countRegisteredTracks(const std::vector<const Track*>& tracks) const {
  return static_cast<std::size_t>(std::count_if(
      tracks.begin(), tracks.end(), [this](const Track* track) { return containsTrack(*track); }));
}

}  // namespace Orvane
