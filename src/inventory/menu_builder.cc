#include "inventory/menu_builder.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "tree/position_index.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

MenuNode& appendMenu(MenuNode& parent, std::string_view name, std::uint32_t recType,
                     std::uint32_t id) {
  return parent.appendChild([&](MenuNode& menu) {
    menu.setBorrowedName(name);
    menu.setNodeType(NODE_TYPE_MENU);
    menu.setRecType(recType);
    menu.setMediaId(id);
  });
}

// Appends leaves for the tracks of one manager.
class LeafMaker {
 public:
  LeafMaker(const TrackManager& manager, MenuTree& tree)
      : index_(manager.getIndex()),
        hasTokens_(tree.acceptTokensOf(&manager, index_.highestNumber())) {}

  // A leaf doesn't carry its track's rating: players tell stars by the menu alone.
  void append(MenuNode& parent, const Track& track) const {
    append(parent, track, track.getNumber());
  }

  // The same for one that may be any track, as those in playlists.
  void appendAny(MenuNode& parent, const Track& track) const {
    append(parent, track, index_.numberOf(track));
  }

 private:
  void append(MenuNode& parent, const Track& track, TrackIndex::Number number) const {
    parent.appendChild([&](MenuNode& leaf) { leaf.becomeLeafOf(track, hasTokens_ ? number : 0); });
  }

  const TrackIndex& index_;
  bool hasTokens_;  // false when the tree takes the tokens of another manager
};

MenuNode& appendAlbum(MenuNode& parent, const Track& track) {
  return appendMenu(parent, track.getAlbumName(), RecType::kAlbum, track.getAlbumId());
}

template <typename Use>
void forEachTrack(const TrackIndex& index, const CategoryIndex& category, Use use) {
  const std::vector<const Track*> tracks = index.tracksInOrder(category);
  forEachPrefetched(tracks.begin(), tracks.end(), use);
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
  const LeafMaker leaves(manager, tree);
  for (auto it = manager.playlistsBegin(); it != manager.playlistsEnd(); ++it) {
    const Playlist& playlist = **it;
    MenuNode& menu =
        appendMenu(category, playlist.getName(), RecType::kPlaylist, playlist.getPlaylistId());
    const std::vector<const Track*>& tracks = playlist.getTracks();
    forEachPrefetched(tracks.begin(), tracks.end(),
                      [&](const Track& track) { leaves.appendAny(menu, track); });
  }
}

void addArtistsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const LeafMaker leaves(manager, tree);
  struct Album {
    const MenuNode* artist;
    MenuNode* menu;
  };
  std::vector<Album> albums;
  PositionIndex albumIndex;

  // The albums met last: most tracks are of one of these, and to know them by where the name is
  // takes no look at its bytes.
  struct Recent {
    const char* name = nullptr;
    std::size_t nameSize = 0;
    std::uint32_t id = 0;
    std::uint32_t run = 0;  // counted from 1, so that no track is taken for one of no album
    std::uint32_t album = 0;
  };
  std::array<Recent, 128> recents;

  RunDetector runs;
  MenuNode* artist = nullptr;
  std::uint32_t run = 0;
  const TrackIndex& index = manager.getIndex();
  forEachTrack(index, index.getArtists(), [&](const Track& track) {
    if (runs.startsRun(track.getArtistId())) {
      artist = &appendMenu(category, track.getArtistName(), RecType::kArtist, track.getArtistId());
      ++run;
    }
    const std::string_view fullName = track.getAlbumName();
    const std::uint32_t id = track.getAlbumId();
    Recent& recent = recents[id % recents.size()];
    if (recent.run != run || recent.id != id || recent.name != fullName.data() ||
        recent.nameSize != fullName.size()) {
      const std::string_view name = MenuNode::storedForm(fullName);
      const auto next = static_cast<std::uint32_t>(albums.size());
      const std::uint32_t hash = hashNameAndId(name, id) + run * 0x9E3779B9U;
      std::uint32_t album = albumIndex.findOrInsert(hash, next, [&](std::uint32_t candidate) {
        const Album& other = albums[candidate];
        return other.artist == artist && other.menu->getMediaId() == id &&
               other.menu->getName() == name;
      });
      // It is the whole name that is looked for among the stored ones: one too long to be stored
      // whole is never found, and each such track gets an album menu to itself.
      const bool isShortened = fullName.size() > name.size();
      if (isShortened) album = next;
      if (album == next) albums.push_back({artist, &appendAlbum(*artist, track)});
      recent = {fullName.data(), fullName.size(), id, isShortened ? 0 : run, album};
    }
    leaves.append(*albums[recent.album].menu, track);
  });
}

void addAlbumsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const LeafMaker leaves(manager, tree);
  std::vector<MenuNode*> albums;
  PositionIndex albumIndex;

  RunDetector runs;
  MenuNode* album = nullptr;
  const TrackIndex& index = manager.getIndex();
  forEachTrack(index, index.getAlbums(), [&](const Track& track) {
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
    leaves.append(*album, track);
  });
}

void addSongsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const LeafMaker leaves(manager, tree);
  for (auto it = manager.tracksBegin(); it != manager.tracksEnd(); ++it) {
    leaves.append(category, **it);
  }
}

void addGenresMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const LeafMaker leaves(manager, tree);
  RunDetector runs;
  MenuNode* genre = nullptr;
  const TrackIndex& index = manager.getIndex();
  forEachTrack(index, index.getGenres(), [&](const Track& track) {
    if (runs.startsRun(track.getGenreId())) {
      genre = &appendMenu(category, track.getGenreName(), RecType::kGenre, track.getGenreId());
    }
    leaves.append(*genre, track);
  });
}

void addRatingsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category) {
  const LeafMaker leaves(manager, tree);
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
  const TrackIndex& index = manager.getIndex();
  forEachTrack(index, index.getRatings(), [&](const Track& track) {
    const std::uint32_t rating = track.getRating();
    if (rating >= 1 && rating <= menus.size()) leaves.append(*menus[rating - 1], track);
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
  for (const Category& category : kCategories) {
    category.fill(manager, tree,
                  appendMenu(*tree.getRoot(), category.name, RecType::kPlainMenu, 0));
  }
}

}  // namespace Orvane
