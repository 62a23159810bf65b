#include "inventory/artist_albums.h"

#include <functional>
#include <string_view>

#include "inventory/append_menu.h"
#include "tree/keyed_hash.h"

namespace Orvane {

void ArtistAlbums::startArtist(MenuNode& menu) {
  // The albums of earlier artists are of no use any more. Few don't matter.
  constexpr std::size_t kFewAlbums = 1024;
  if (albums_.size() > kFewAlbums) {
    albums_.clear();
    albumIndex_.clear();
  }
  menu_ = &menu;
  ++artist_;
  firstAlbum_ = albums_.size();
  albumsAdded_.clear();
}

void ArtistAlbums::add(const Track& track) {
  const std::uint32_t album = findOrAppend(track);
  ++albums_[album].trackCount;
  albumsAdded_.push_back(album);
}

std::uint32_t ArtistAlbums::findOrAppend(const Track& track) {
  const Album* const address = &track.getAlbum();
  Recent& recent = recents_[std::hash<const Album*>()(address) / sizeof(Album) % recents_.size()];
  if (recent.artist == artist_ && recent.of == address) return recent.album;

  const std::string_view fullName = track.getAlbumName();
  const std::uint32_t id = track.getAlbumId();
  const std::string_view name = MenuNode::storedForm(fullName);
  const auto next = static_cast<std::uint32_t>(albums_.size());
  const std::uint32_t hash = hashNameAndId(name, id) + artist_ * 0x9E3779B9U;
  std::uint32_t album = albumIndex_.findOrInsert(hash, next, [&](std::uint32_t candidate) {
    const AlbumMenu& other = albums_[candidate];
    return candidate >= firstAlbum_ && other.menu->getMediaId() == id &&
           other.menu->getName() == name;
  });
  // It is the whole name that is looked for among the stored ones: one too long to be stored whole
  // is never found, and each such track gets an album menu to itself.
  const bool isShortened = fullName.size() > name.size();
  if (isShortened) album = next;
  if (album == next) albums_.push_back({&appendAlbum(*menu_, track)});
  recent = {address, isShortened ? 0 : artist_, album};
  return album;
}

void ArtistAlbums::finishArtist(const TrackTable& tracks, std::span<std::uint32_t> numbers) {
  const std::span<AlbumMenu> albums = std::span(albums_).subspan(firstAlbum_);
  std::uint32_t next = 0;
  for (AlbumMenu& album : albums) {
    album.nextTrack = next;
    next += album.trackCount;
  }
  numbersAdded_.assign(numbers.begin(), numbers.end());
  for (std::size_t i = 0; i < numbersAdded_.size(); ++i) {
    numbers[albums_[albumsAdded_[i]].nextTrack++] = numbersAdded_[i];
  }
  for (const AlbumMenu& album : albums) {
    const std::uint32_t begin = album.nextTrack - album.trackCount;
    album.menu->appendLeaves(tracks, numbers.subspan(begin, album.trackCount));
  }
}

}  // namespace Orvane
