#include "inventory/menu_builder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "inventory/album_menus.h"
#include "inventory/append_menu.h"
#include "inventory/artist_albums.h"
#include "inventory/category_runs.h"
#include "inventory/one_artist_albums.h"
#include "tree/huge_pages.h"
#include "tree/parallel.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

// Appends leaves for the tracks of one manager.
class LeafMaker {
 public:
  LeafMaker(const TrackIndex& index, MenuTree& tree) : index_(index) {
    tree.setTrackTable(index.getTracksByNumber());
  }

  // A leaf doesn't carry its track's rating: players tell stars by the menu alone.
  void append(MenuNode& parent, const Track& track) const {
    if (const TrackIndex::Number number = index_.numberOf(track)) {
      parent.appendLeaf(index_.getTracksByNumber(), number);
    } else {
      parent.appendChild([&](MenuNode& leaf) { leaf.becomeLeafOf(track); });
    }
  }

  // The same for tracks with these numbers, which the tree keeps.
  void append(MenuNode& parent, std::span<TrackIndex::Number> kept) const {
    parent.appendLeaves(index_.getTracksByNumber(), kept);
  }

 private:
  const TrackIndex& index_;
};

// Fills "Artists": those in `oneArtistAlbums`, unless that is nullptr, from there, the others track
// by track. Calls `forget` once no category's index is needed any more.
void fillArtists(const TrackIndex& index, MenuTree& tree, MenuNode& category,
                 OneArtistAlbums* oneArtistAlbums, const std::function<void()>& forget) {
  const TrackTable& tracks = index.getTracksByNumber();
  std::span<const std::uint32_t> leftOut;
  if (oneArtistAlbums != nullptr) leftOut = oneArtistAlbums->trackCounts();
  CategoryIndex::Order order = index.getArtists().inOrder(leftOut);
  forget();
  if (oneArtistAlbums != nullptr) oneArtistAlbums->take(order.starts);
  auto next = order.starts.cbegin();
  const auto appendLeftOutBefore = [&](std::size_t place) {
    for (; next != order.starts.cend() && next->place <= place; ++next) {
      if (next->isLeftOut) oneArtistAlbums->appendNextArtist(category);
    }
  };
  ArtistAlbums albums;
  const std::span<TrackIndex::Number> numbers = tree.keepNumbers(std::move(order.tracks));
  forEachRun(
      tracks, numbers, {}, &Track::getArtistId,
      [&](const Track& track, const CategoryIndex::Start& start) {
        appendLeftOutBefore(start.place);
        albums.startArtist(
            appendMenu(category, track.getArtistName(), RecType::kArtist, track.getArtistId()));
      },
      [&](const Track& track) { albums.add(track); },
      [&](std::span<TrackIndex::Number> run) { albums.finishArtist(tracks, run); });
  appendLeftOutBefore(numbers.size());
}

// Fills "Artists", from albums where that can be, and gives the albums' menus their leaves.
void fillArtistsAndAlbums(const TrackIndex& index, MenuTree& tree, MenuNode& category,
                          AlbumMenus& albums, const std::function<void()>& forget) {
  // Twins are for menus whose leaves are numbers.
  if (tree.getTrackTable() == &index.getTracksByNumber()) {
    OneArtistAlbums oneArtistAlbums(albums, index.getArtists());
    fillArtists(index, tree, category, &oneArtistAlbums, forget);
  } else {
    fillArtists(index, tree, category, nullptr, forget);
  }
  albums.appendAllOtherLeaves();
}

}  // namespace

void addPlaylistsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  for (auto it = manager.playlistsBegin(); it != manager.playlistsEnd(); ++it) {
    const Playlist& playlist = **it;
    MenuNode& menu =
        appendMenu(category, playlist.getName(), RecType::kPlaylist, playlist.getPlaylistId());
    const std::vector<const Track*>& tracks = playlist.getTracks();
    forEachPrefetched(
        tracks.size(), [&](std::size_t i) { leaves.append(menu, *tracks[i]); },
        [&](std::size_t i) { prefetch(tracks[i]); });
  }
}

void addArtistsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  tree.setTrackTable(index.getTracksByNumber());
  fillArtists(index, tree, category, nullptr, [] {});
}

void addAlbumsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  tree.setTrackTable(index.getTracksByNumber());
  AlbumMenus(index, tree, category).appendAllOtherLeaves();
}

void addSongsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  LargeVector<TrackIndex::Number> numbers;
  numbers.reserve(index.listSize());
  std::size_t place = 0;
  for (; place < index.listSize(); ++place) {
    const TrackIndex::Number number = index.numberOf(*index.listedAt(place));
    if (number == 0) break;
    numbers.push_back(number);
  }
  leaves.append(category, tree.keepNumbers(std::move(numbers)));
  for (; place < index.listSize(); ++place) leaves.append(category, *index.listedAt(place));
}

void addGenresMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  CategoryIndex::Order order = index.getGenres().inOrder();
  MenuNode* genre = nullptr;
  forEachRun(
      index.getTracksByNumber(), tree.keepNumbers(std::move(order.tracks)), order.starts,
      &Track::getGenreId,
      [&](const Track& track, const CategoryIndex::Start& /*start*/) {
        genre = &appendMenu(category, track.getGenreName(), RecType::kGenre, track.getGenreId());
      },
      [&](std::span<TrackIndex::Number> numbers) { leaves.append(*genre, numbers); });
}

void addRatingsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  struct Stars {
    std::string_view name;
    std::uint32_t recType;
  };
  constexpr std::array<Stars, 3> kStars = {{{"One Star", RecType::kOneStar},
                                            {"Two Stars", RecType::kTwoStars},
                                            {"Three Stars", RecType::kThreeStars}}};

  // The best come first. These menus never got a node type, unlike all others, and keep 0.
  std::array<MenuNode*, kStars.size()> menus{};
  for (std::size_t i = kStars.size(); i-- > 0;) {
    menus[i] = &category.appendChild([&](MenuNode& menu) {
      menu.setBorrowedName(kStars[i].name);
      menu.setRecType(kStars[i].recType);
    });
  }
  CategoryIndex::Order order = index.getRatings().inOrder();
  std::uint32_t rating = 0;
  forEachRun(
      index.getTracksByNumber(), tree.keepNumbers(std::move(order.tracks)), order.starts,
      &Track::getRating,
      [&](const Track& track, const CategoryIndex::Start& /*start*/) {
        rating = track.getRating();
      },
      [&](std::span<TrackIndex::Number> numbers) {
        if (rating >= 1 && rating <= menus.size()) leaves.append(*menus[rating - 1], numbers);
      });
}

namespace {

// Builds the menus; calls `forget` with a category when its index isn't needed any more, and
// `forgetAll` when none is.
void buildMenus(const TrackManager& manager, MenuTree& tree,
                const std::function<void(CategoryIndex& (TrackIndex::*category)())>& forget,
                const std::function<void()>& forgetAll) {
  enum { kPlaylists, kArtists, kAlbums, kSongs, kGenres, kFavorites };
  constexpr std::array<std::string_view, 6> kNames = {"Playlists", "Artists", "Albums",
                                                      "Songs",     "Genres",  "Favorites"};
  const TrackIndex& index = manager.getIndex();
  tree.setTrackTable(index.getTracksByNumber());
  const std::size_t workers = workersFor(index.getTracksByNumber().size());
  std::array<MenuNode*, kNames.size()> menus;
  std::transform(kNames.begin(), kNames.end(), menus.begin(), [&](std::string_view name) {
    MenuNode& menu =
        workers > 1 ? tree.appendApart() : tree.getRoot()->appendChild([](MenuNode&) {});
    fillMenu(menu, name, RecType::kPlainMenu, 0);
    return &menu;
  });

  using Fills = std::vector<std::function<void()>>;
  const auto fillAll = [&](const Fills& fills) {
    forEachInParallel(fills.size(), workers,
                      [&](std::size_t i, std::size_t /*worker*/) { fills[i](); });
  };
  std::optional<AlbumMenus> albums;
  fillAll({
      [&] {
        albums.emplace(index, tree, *menus[kAlbums]);
        forget(&TrackIndex::getAlbums);
      },
      [&] {
        addRatingsMenu(manager, tree, *menus[kFavorites]);
        forget(&TrackIndex::getRatings);
      },
      [&] {
        addGenresMenu(manager, tree, *menus[kGenres]);
        forget(&TrackIndex::getGenres);
      },
      [&] { addPlaylistsMenu(manager, tree, *menus[kPlaylists]); },
  });
  // Once all menus of albums are there.
  fillAll({
      [&] { fillArtistsAndAlbums(index, tree, *menus[kArtists], *albums, forgetAll); },
      [&] { addSongsMenu(manager, tree, *menus[kSongs]); },
  });
}

}  // namespace

void buildMenuFromInventory(const TrackManager& manager, MenuTree& tree) {
  buildMenus(
      manager, tree, [](auto /*category*/) {}, [] {});
}

void turnInventoryIntoMenu(TrackManager& manager, MenuTree& tree) {
  manager.forgetIds();  // only playlists ask for them
  buildMenus(
      manager, tree, [&](auto category) { manager.forgetCategory(category); },
      [&] { manager.forgetCategories(); });
  manager.clear();
}

}  // namespace Orvane
