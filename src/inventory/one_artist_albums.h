#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "inventory/album_menus.h"
#include "inventory/category_index.h"
#include "tree/album.h"
#include "tree/huge_pages.h"
#include "tree/menu_node.h"

namespace Orvane {

// Artists whose albums have no other artist: what their menus hold is known by album, which takes
// one look at an album instead of several at each track. The menus of their albums are twins of
// those in "Albums", as both hold all of the album's tracks.
class OneArtistAlbums {
 public:
  // `albums` have no leaves yet, and are of a tree whose leaves can be numbers. Both must outlive
  // this.
  OneArtistAlbums(AlbumMenus& albums, const CategoryIndex& artists);

  // How many tracks such albums have, for each artist in the index, by position. An artist who has
  // so many in all, and a name that no other has, is one of these.
  std::span<const std::uint32_t> trackCounts() const { return trackCounts_; }

  // Takes those artists who are left out at `starts`.
  void take(std::span<const CategoryIndex::Start> starts);

  // Appends the menu of the next artist taken to `category`, with the menus of the albums in the
  // order in which they first come up, and gives these menus and their twins their leaves.
  void appendNextArtist(MenuNode& category);

 private:
  struct Entry {
    const Album* album;
    MenuNode* menu;
    const std::uint32_t* numbers;  // of its tracks
    std::uint32_t trackCount;
    std::uint32_t firstTrack;  // the first of the numbers
  };

  void expect(std::size_t album) const;

  AlbumMenus& menus_;
  LargeVector<Entry> albums_;           // once artists have been taken, theirs in order
  LargeVector<std::uint32_t> artists_;  // of the albums before that, by position
  LargeVector<std::uint32_t> trackCounts_;
  LargeVector<std::size_t> ends_;  // in albums_, of the artists taken
  std::size_t nextArtist_ = 0;
  std::size_t nextAlbum_ = 0;
};

}  // namespace Orvane
