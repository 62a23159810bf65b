#include "inventory/album_menus.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "inventory/append_menu.h"
#include "inventory/category_runs.h"
#include "tree/keyed_hash.h"
#include "tree/position_index.h"

namespace Orvane {

AlbumMenus::AlbumMenus(const TrackIndex& index, MenuTree& tree, MenuNode& category)
    : tracks_(index.getTracksByNumber()), tree_(tree) {
  PositionIndex menuIndex;
  const auto findOrEnter = [&](const Track& track, std::uint32_t next) {
    const std::string_view name = MenuNode::storedForm(track.getAlbumName());
    return menuIndex.findOrInsert(
        hashNameAndId(name, track.getAlbumId()), next, [&](std::uint32_t candidate) {
          const MenuNode& menu = *menus_[candidate].menu;
          return menu.getMediaId() == track.getAlbumId() && menu.getName() == name;
        });
  };
  // Tracks that have another album than they were entered with stand where they came.
  CategoryIndex::Order order =
      Track::wereAnyChanged() ? index.getAlbums().inOrder() : index.getAlbums().inOrderOfIds();
  numbers_ = std::move(order.tracks);
  std::uint32_t menu = 0;
  forEachRun(
      tracks_, numbers_, order.starts, &Track::getAlbumId,
      [&](const Track& track, const CategoryIndex::Start& start) {
        const auto next = static_cast<std::uint32_t>(menus_.size());
        menu = start.isOnly ? next : findOrEnter(track, next);
        if (menu != next) return;
        menus_.push_back(
            {&appendAlbum(category, track), start.hasOneNamedId ? &track.getAlbum() : nullptr});
      },
      [&](std::span<std::uint32_t> run) { runs_.add(menu, run); });
  runs_.join();
}

void AlbumMenus::keepInOtherOrder() {
  isInOtherOrder_ = true;
  toBeKept_ = tree_.keepNumbers(LargeVector<std::uint32_t>(numbers_.size()));
}

void AlbumMenus::appendLeaves(MenuNode& menu, std::span<const std::uint32_t> numbers) {
  std::copy(numbers.begin(), numbers.end(), toBeKept_.begin());
  menu.appendLeaves(tracks_, toBeKept_.first(numbers.size()));
  toBeKept_ = toBeKept_.subspan(numbers.size());
}

void AlbumMenus::appendAllOtherLeaves() {
  // First, lest menus be left with numbers that nobody keeps. They stay where they are.
  if (!isInOtherOrder_) tree_.keepNumbers(std::move(numbers_));
  for (std::uint32_t i = 0; i < menus_.size(); ++i) {
    MenuNode& menu = *menus_[i].menu;
    if (menu.childCount() > 0) continue;
    if (isInOtherOrder_) {
      appendLeaves(menu, runs_.of(i));
    } else {
      menu.appendLeaves(tracks_, runs_.of(i));
    }
  }
}

}  // namespace Orvane
