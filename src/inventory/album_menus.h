#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "inventory/album_runs.h"
#include "inventory/track_index.h"
#include "tree/album.h"
#include "tree/huge_pages.h"
#include "tree/menu_tree.h"

namespace Orvane {

// The menus of "Albums", which get their leaves later: artists' menus share these, and are laid out
// first, so that the numbers had better be kept in their order. Until this is destroyed, there are
// numbers in both orders then.
class AlbumMenus {
 public:
  struct AlbumMenu {
    MenuNode* menu;
    const Album* album;  // that all its tracks have, or nullptr
  };

  // Appends a menu an album to `category`, by stored name and id, in the order of the albums'
  // names. All arguments must outlive this.
  AlbumMenus(const TrackIndex& index, MenuTree& tree, MenuNode& category);
  AlbumMenus(const AlbumMenus&) = delete;
  AlbumMenus& operator=(const AlbumMenus&) = delete;

  std::span<const AlbumMenu> menus() const { return menus_; }

  // The numbers of a menu's tracks, in the order in which its leaves are to be.
  std::span<const std::uint32_t> numbersOf(std::size_t menu) const {
    return runs_.of(static_cast<std::uint32_t>(menu));
  }

  // Has the tree keep the numbers in the order of the calls of appendLeaves(), and then those of
  // the other menus.
  void keepInOtherOrder();

  // Gives a menu its leaves, once that has been called.
  void appendLeaves(MenuNode& menu, std::span<const std::uint32_t> numbers);

  // Gives their leaves to all menus that have none. To be called once, at the end.
  void appendAllOtherLeaves();

 private:
  const TrackTable& tracks_;
  MenuTree& tree_;
  LargeVector<AlbumMenu> menus_;
  LargeVector<std::uint32_t> numbers_;  // of all menus
  AlbumRuns runs_;
  bool isInOtherOrder_ = false;
  std::span<std::uint32_t> toBeKept_;  // what of the other order is still to come
};

}  // namespace Orvane
