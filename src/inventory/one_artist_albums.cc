#include "inventory/one_artist_albums.h"

#include "inventory/append_menu.h"
#include "tree/key_sort.h"
#include "tree/prefetch.h"

namespace Orvane {

OneArtistAlbums::OneArtistAlbums(AlbumMenus& albums, const CategoryIndex& artists)
    : menus_(albums), trackCounts_(artists.positionCount()) {
  const std::span<const AlbumMenus::AlbumMenu> menus = albums.menus();
  albums_.reserve(menus.size());
  artists_.reserve(menus.size());
  const auto artistOf = [&](std::size_t i) -> const NamedId& { return menus[i].album->artist(); };
  forEachPrefetched(
      menus.size(),
      [&](std::size_t i) {
        const Album* const album = menus[i].album;
        if (album == nullptr) return;
        const std::uint32_t artist = artists.positionOf(artistOf(i).id());
        // Under an artist, an album whose name isn't stored whole has a menu for each track.
        const bool isStoredWhole = album->name().size() <= MenuNode::kMaxNameLength;
        if (artist == trackCounts_.size() || !isStoredWhole) return;
        const std::span<const std::uint32_t> numbers = menus_.numbersOf(i);
        const auto trackCount = static_cast<std::uint32_t>(numbers.size());
        trackCounts_[artist] += trackCount;
        albums_.push_back({album, menus[i].menu, numbers.data(), trackCount, numbers.front()});
        artists_.push_back(artist);
      },
      [&](std::size_t i) { prefetch(menus[i].album); },
      [&](std::size_t i) {
        if (menus[i].album != nullptr) prefetch(&artistOf(i));
      },
      [&](std::size_t i) {
        if (menus[i].album != nullptr) artists.expectPosition(artistOf(i).id());
      });
}

void OneArtistAlbums::take(std::span<const CategoryIndex::Start> starts) {
  constexpr auto kNotTaken = static_cast<std::size_t>(-1);
  LargeVector<std::size_t> counts(trackCounts_.size());
  for (const std::uint32_t artist : artists_) ++counts[artist];
  LargeVector<std::size_t> places(trackCounts_.size(), kNotTaken);
  std::size_t end = 0;
  for (const CategoryIndex::Start& start : starts) {
    if (!start.isLeftOut) continue;
    places[start.position] = end;
    end += counts[start.position];
    ends_.push_back(end);
  }
  LargeVector<Entry> taken(end);
  for (std::size_t i = 0; i < albums_.size(); ++i) {
    std::size_t& place = places[artists_[i]];
    if (place != kNotTaken) taken[place++] = albums_[i];
  }
  albums_.swap(taken);
  release(artists_);
  std::size_t begin = 0;
  for (const std::size_t artistEnd : ends_) {
    sortByKey<Ties::kInAnyOrder>(std::span(albums_).subspan(begin, artistEnd - begin),
                                 [](const Entry& entry) { return entry.firstTrack; });
    begin = artistEnd;
  }
  if (!albums_.empty()) menus_.keepInOtherOrder();
}

void OneArtistAlbums::expect(std::size_t album) const {
  if (album >= albums_.size()) return;
  const Entry& entry = albums_[album];
  prefetch(entry.menu);
  prefetch(entry.numbers);
  prefetch(entry.numbers + entry.trackCount - 1);
  prefetch(entry.album);
}

void OneArtistAlbums::appendNextArtist(MenuNode& category) {
  // Written as it is with the artist's first track.
  const NamedId& artist = albums_[nextAlbum_].album->artist();
  MenuNode& menu = appendMenu(category, artist.name(), RecType::kArtist, artist.id());
  for (const std::size_t end = ends_[nextArtist_++]; nextAlbum_ < end; ++nextAlbum_) {
    // Mostly too few are an artist's for those to be asked for by themselves.
    constexpr std::size_t kAhead = 16;
    expect(nextAlbum_ + kAhead);
    const Entry& album = albums_[nextAlbum_];
    menus_.appendLeaves(*album.menu, {album.numbers, album.trackCount});
    menu.appendTwinOf(*album.menu);
  }
}

}  // namespace Orvane
