#include "inventory/menu_builder.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "tree/parallel.h"
#include "tree/position_index.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

void fillMenu(MenuNode& menu, std::string_view name, std::uint32_t recType, std::uint32_t id) {
  menu.setBorrowedName(name);
  menu.setNodeType(NODE_TYPE_MENU);
  menu.setRecType(recType);
  menu.setMediaId(id);
}

MenuNode& appendMenu(MenuNode& parent, std::string_view name, std::uint32_t recType,
                     std::uint32_t id) {
  return parent.appendChild([&](MenuNode& menu) { fillMenu(menu, name, recType, id); });
}

// Appends leaves for the tracks of one manager.
class LeafMaker {
 public:
  LeafMaker(const TrackIndex& index, MenuTree& tree) : index_(index) {
    tree.setTrackTable(index.getTracksByNumber());
  }

  // A leaf doesn't carry its track's rating: players tell stars by the menu alone.
  void append(MenuNode& parent, TrackIndex::Number number) const {
    parent.appendLeaf(index_.getTracksByNumber(), number);
  }

  // The same for one that may be any track, as those in playlists.
  void append(MenuNode& parent, const Track& track) const {
    if (const TrackIndex::Number number = index_.numberOf(track)) {
      append(parent, number);
    } else {
      parent.appendChild([&](MenuNode& leaf) { leaf.becomeLeafOf(track); });
    }
  }

 private:
  const TrackIndex& index_;
};

MenuNode& appendAlbum(MenuNode& parent, const Track& track) {
  return appendMenu(parent, track.getAlbumName(), RecType::kAlbum, track.getAlbumId());
}

// Calls `use` with each track of a category's entries, in order, and with its number. Before that,
// `expect` is called with the track, in time to ask for what `use` looks at beyond it.
template <typename Use, typename... Expect>
void forEachTrack(const TrackIndex& index, const CategoryIndex& category, Use use,
                  Expect... expect) {
  const TrackTable& tracks = index.getTracksByNumber();
  const LargeVector<TrackIndex::Number> numbers = category.tracksInOrder();
  forEachPrefetched(
      numbers.size(), [&](std::size_t i) { use(*tracks[numbers[i]], numbers[i]); },
      [&](std::size_t i) { prefetch(&tracks[numbers[i]]); },
      [&](std::size_t i) { prefetchTrack(tracks[numbers[i]]); },
      [&](std::size_t i) { expect(*tracks[numbers[i]]); }...);
}

void expectAlbum(const Track& track) {
  prefetch(&track.getAlbum());
}

// Tells the runs of equal ids apart in a sequence.
class RunDetector {
 public:
  // True for the first id and for every one that isn't the one before it.
  bool startsRun(std::uint32_t id) { return std::exchange(previous_, id) != id; }

 private:
  std::optional<std::uint32_t> previous_;
};

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
        [&](std::size_t i) { prefetchTrack(tracks[i]); });
  }
}

void addArtistsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  struct Album {
    const MenuNode* artist;
    MenuNode* menu;
  };
  constexpr std::size_t kFewAlbums = 1024;
  std::vector<Album> albums;
  PositionIndex albumIndex;

  // The albums met last, each in a place that its address decides: most tracks are of one of these.
  struct Recent {
    const NamedId* id = nullptr;
    std::uint32_t run = 0;  // counted from 1, so that no track is taken for one of no album
    std::uint32_t album = 0;
  };
  std::array<Recent, 128> recents;

  RunDetector runs;
  MenuNode* artist = nullptr;
  std::uint32_t run = 0;
  forEachTrack(
      index, index.getArtists(),
      [&](const Track& track, TrackIndex::Number number) {
        if (runs.startsRun(track.getArtistId())) {
          artist =
              &appendMenu(category, track.getArtistName(), RecType::kArtist, track.getArtistId());
          ++run;
          // The albums of earlier runs are of no use any more. Few don't matter.
          if (albums.size() > kFewAlbums) {
            albums.clear();
            albumIndex.clear();
          }
        }
        const NamedId* const address = &track.getAlbum();
        Recent& recent =
            recents[std::hash<const NamedId*>()(address) / sizeof(NamedId) % recents.size()];
        if (recent.run != run || recent.id != address) {
          const std::string_view fullName = track.getAlbumName();
          const std::uint32_t id = track.getAlbumId();
          const std::string_view name = MenuNode::storedForm(fullName);
          const auto next = static_cast<std::uint32_t>(albums.size());
          const std::uint32_t hash = hashNameAndId(name, id) + run * 0x9E3779B9U;
          std::uint32_t album = albumIndex.findOrInsert(hash, next, [&](std::uint32_t candidate) {
            const Album& other = albums[candidate];
            return other.artist == artist && other.menu->getMediaId() == id &&
                   other.menu->getName() == name;
          });
          // It is the whole name that is looked for among the stored ones: one too long to be
          // stored whole is never found, and each such track gets an album menu to itself.
          const bool isShortened = fullName.size() > name.size();
          if (isShortened) album = next;
          if (album == next) albums.push_back({artist, &appendAlbum(*artist, track)});
          recent = {address, isShortened ? 0 : run, album};
        }
        leaves.append(*albums[recent.album].menu, number);
      },
      expectAlbum);
}

void addAlbumsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  std::vector<MenuNode*> albums;
  PositionIndex albumIndex;

  RunDetector runs;
  MenuNode* album = nullptr;
  forEachTrack(
      index, index.getAlbums(),
      [&](const Track& track, TrackIndex::Number number) {
        if (runs.startsRun(track.getAlbumId())) {
          const std::string_view name = MenuNode::storedForm(track.getAlbumName());
          const auto next = static_cast<std::uint32_t>(albums.size());
          const std::uint32_t found = albumIndex.findOrInsert(
              hashNameAndId(name, track.getAlbumId()), next, [&](std::uint32_t candidate) {
                return albums[candidate]->getMediaId() == track.getAlbumId() &&
                       albums[candidate]->getName() == name;
              });
          if (found == next) albums.push_back(&appendAlbum(category, track));
          album = albums[found];
        }
        leaves.append(*album, number);
      },
      expectAlbum);
}

void addSongsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  for (auto it = manager.tracksBegin(); it != manager.tracksEnd(); ++it) {
    leaves.append(category, **it);
  }
}

void addGenresMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const TrackIndex& index = manager.getIndex();
  const LeafMaker leaves(index, tree);
  RunDetector runs;
  MenuNode* genre = nullptr;
  forEachTrack(index, index.getGenres(), [&](const Track& track, TrackIndex::Number number) {
    if (runs.startsRun(track.getGenreId())) {
      genre = &appendMenu(category, track.getGenreName(), RecType::kGenre, track.getGenreId());
    }
    leaves.append(*genre, number);
  });
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
  forEachTrack(index, index.getRatings(), [&](const Track& track, TrackIndex::Number number) {
    const std::uint32_t rating = track.getRating();
    if (rating >= 1 && rating <= menus.size()) leaves.append(*menus[rating - 1], number);
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
