#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/menu_node.h"
#include "tree/position_index.h"
#include "tree/track.h"

namespace Orvane {

// Fills the menus of artists, one after the other, with menus of their albums: one for each whole
// name and id, in the order in which they first come up.
class ArtistAlbums {
 public:
  // From here on, tracks are those of this artist's menu, which must be empty.
  void startArtist(MenuNode& menu);

  // The artist's next track. Makes a menu of its album, unless there is one.
  void add(const Track& track);

  // Gives the artist's albums their leaves. `numbers` are those of the tracks added, as they came;
  // they are put in the order of the albums, and must outlive the menus (see appendLeaves).
  void finishArtist(const TrackTable& tracks, std::span<std::uint32_t> numbers);

 private:
  struct AlbumMenu {
    MenuNode* menu;
    std::uint32_t trackCount = 0;
    std::uint32_t nextTrack = 0;  // where its next number goes
  };

  // The albums met last, each in a place that its address decides: most tracks are of one of these.
  struct Recent {
    const Album* of = nullptr;
    std::uint32_t artist = 0;
    std::uint32_t album = 0;
  };

  std::uint32_t findOrAppend(const Track& track);

  std::vector<AlbumMenu> albums_;
  PositionIndex albumIndex_;
  std::array<Recent, 128> recents_;

  MenuNode* menu_ = nullptr;                // of the artist
  std::uint32_t artist_ = 0;                // counted from 1, so that no Recent is one's by mistake
  std::size_t firstAlbum_ = 0;              // of the artist's
  LargeVector<std::uint32_t> albumsAdded_;  // of each track added, in albums_
  LargeVector<std::uint32_t> numbersAdded_;
};

}  // namespace Orvane
