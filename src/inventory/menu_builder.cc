#include "inventory/menu_builder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "inventory/album_runs.h"
#include "inventory/append_menu.h"
#include "inventory/artist_albums.h"
#include "tree/huge_pages.h"
#include "tree/keyed_hash.h"
#include "tree/parallel.h"
#include "tree/position_index.h"
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

using Starts = std::span<const CategoryIndex::Start>;

// Goes through the runs of equal ids among tracks' numbers: calls `start` with the first track of
// each run and whether the run is known to be all that there is of the id, `look` with each track
// that is looked at, and `finish` with the numbers of the run, which stand right behind those of
// the run before. Looked at are the tracks at `starts`; without any, all are.
template <typename Start, typename Look, typename Finish>
void forEachRun(const TrackTable& tracks, std::span<TrackIndex::Number> numbers, Starts starts,
                std::uint32_t (Track::*idOf)() const, Start start, Look look, Finish finish) {
  const auto placeAt = [&](std::size_t i) { return starts.empty() ? i : starts[i].place; };
  const auto trackAt = [&](std::size_t i) { return tracks[numbers[placeAt(i)]]; };
  std::size_t begin = 0;
  std::uint32_t id = 0;
  forEachPrefetched(
      starts.empty() ? numbers.size() : starts.size(),
      [&](std::size_t i) {
        const Track& track = *trackAt(i);
        if (i == 0 || (track.*idOf)() != id) {
          const std::size_t end = placeAt(i);
          if (i > 0) finish(numbers.subspan(begin, end - begin));
          begin = end;
          id = (track.*idOf)();
          start(track, !starts.empty() && starts[i].isOnly);
        }
        look(track);
      },
      [&](std::size_t i) { prefetch(&numbers[placeAt(i)]); },
      [&](std::size_t i) { prefetch(trackAt(i)); },
      [&](std::size_t i) { prefetch(&trackAt(i)->getAlbum()); });
  if (!numbers.empty()) finish(numbers.subspan(begin));
}

// The same for all entries of a category, in order, where tracks are of no interest in themselves:
// then mostly few are looked at. The tree keeps the numbers.
template <typename Start, typename Finish>
void forEachRun(const TrackIndex& index, const CategoryIndex& category, MenuTree& tree,
                std::uint32_t (Track::*idOf)() const, Start start, Finish finish) {
  CategoryIndex::Order order = category.inOrder();
  const std::span<TrackIndex::Number> numbers = tree.keepNumbers(std::move(order.tracks));
  const Starts starts = Track::wereAnyChanged() ? Starts() : Starts(order.starts);
  forEachRun(
      index.getTracksByNumber(), numbers, starts, idOf, start, [](const Track&) {}, finish);
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
  const TrackTable& tracks = index.getTracksByNumber();
  tree.setTrackTable(tracks);
  ArtistAlbums albums;
  forEachRun(
      tracks, tree.keepNumbers(index.getArtists().tracksInOrder()), {}, &Track::getArtistId,
      [&](const Track& track, bool /*isOnly*/) {
        albums.startArtist(
            appendMenu(category, track.getArtistName(), RecType::kArtist, track.getArtistId()));
      },
      [&](const Track& track) { albums.add(track); },
      [&](std::span<TrackIndex::Number> numbers) { albums.finishArtist(tracks, numbers); });
}

void addAlbumsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  AlbumRuns runs;
  std::vector<MenuNode*> albums;
  PositionIndex albumIndex;
  std::uint32_t album = 0;
  const auto findOrEnter = [&](const Track& track, std::uint32_t next) {
    const std::string_view name = MenuNode::storedForm(track.getAlbumName());
    return albumIndex.findOrInsert(hashNameAndId(name, track.getAlbumId()), next,
                                   [&](std::uint32_t candidate) {
                                     return albums[candidate]->getMediaId() == track.getAlbumId() &&
                                            albums[candidate]->getName() == name;
                                   });
  };
  forEachRun(
      index, index.getAlbums(), tree, &Track::getAlbumId,
      [&](const Track& track, bool isOnly) {
        const auto next = static_cast<std::uint32_t>(albums.size());
        album = isOnly ? next : findOrEnter(track, next);
        if (album == next) albums.push_back(&appendAlbum(category, track));
      },
      [&](std::span<TrackIndex::Number> numbers) { runs.add(album, numbers); });
  runs.join();
  for (std::uint32_t i = 0; i < albums.size(); ++i) leaves.append(*albums[i], runs.of(i));
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
  MenuNode* genre = nullptr;
  forEachRun(
      index, index.getGenres(), tree, &Track::getGenreId,
      [&](const Track& track, bool /*isOnly*/) {
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
  std::uint32_t rating = 0;
  forEachRun(
      index, index.getRatings(), tree, &Track::getRating,
      [&](const Track& track, bool /*isOnly*/) { rating = track.getRating(); },
      [&](std::span<TrackIndex::Number> numbers) {
        if (rating >= 1 && rating <= menus.size()) leaves.append(*menus[rating - 1], numbers);
      });
}

void buildMenuFromInventory(const TrackManager& manager, MenuTree& tree) {
  struct Category {
    std::string_view name;
    void (*fill)(const TrackManager&, MenuTree&, MenuNode&);
  };
  constexpr std::array<Category, 6> kCategories = {{{"Playlists", addPlaylistsMenu},
                                                    {"Artists", addArtistsMenu},
                                                    {"Albums", addAlbumsMenu},
                                                    {"Songs", addSongsMenu},
                                                    {"Genres", addGenresMenu},
                                                    {"Favorites", addRatingsMenu}}};
  const TrackTable& tracks = manager.getIndex().getTracksByNumber();
  tree.setTrackTable(tracks);
  const std::size_t workers = workersFor(tracks.size());
  std::array<MenuNode*, kCategories.size()> menus;
  std::transform(
      kCategories.begin(), kCategories.end(), menus.begin(), [&](const Category& category) {
        MenuNode& menu =
            workers > 1 ? tree.appendApart() : tree.getRoot()->appendChild([](MenuNode&) {});
        fillMenu(menu, category.name, RecType::kPlainMenu, 0);
        return &menu;
      });
  forEachInParallel(menus.size(), workers, [&](std::size_t i, std::size_t /*worker*/) {
    kCategories[i].fill(manager, tree, *menus[i]);
  });
}

}  // namespace Orvane
