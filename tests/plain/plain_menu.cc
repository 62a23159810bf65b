#include "plain/plain_menu.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Orvane::plain {
namespace {

constexpr std::uint32_t kNoGroup = 0xFFFFFFFF;

PlainNode& append(PlainNode& parent, std::unique_ptr<PlainNode> child) {
  parent.children.push_back(std::move(child));
  return *parent.children.back();
}

std::unique_ptr<PlainNode> menu(const std::string& name, std::uint32_t mediaId,
                                std::uint32_t recType) {
  auto node = std::make_unique<PlainNode>();
  node->nodeType = 1;
  node->mediaId = mediaId;
  plainSetName(*node, name);
  node->recType = recType;
  return node;
}

std::unique_ptr<PlainNode> leaf(const PlainTrack& track) {
  auto node = std::make_unique<PlainNode>();
  node->nodeType = 2;
  node->mediaId = track.mediaId;
  plainSetName(*node, track.title);
  node->track = &track;
  return node;
}

PlainNode* findChild(PlainNode& parent, const std::string& name, std::uint32_t mediaId) {
  for (const std::unique_ptr<PlainNode>& child : parent.children) {
    if (child->name == name && child->mediaId == mediaId) return child.get();
  }
  return nullptr;
}

void addPlaylists(const PlainInventory& inventory, PlainNode& category) {
  for (const PlainPlaylist* const playlist : inventory.playlists) {
    PlainNode& node = append(category, menu(playlist->name, playlist->playlistId, 6));
    for (const PlainTrack* const track : playlist->tracks) append(node, leaf(*track));
  }
}

void addArtists(const PlainInventory& inventory, PlainNode& category) {
  std::uint32_t previous = kNoGroup;
  PlainNode* artist = nullptr;
  for (const auto& [key, mediaId] : inventory.artistIndex) {
    const PlainTrack& track = *inventory.tracksById.at(mediaId);
    if (artist == nullptr || track.artistId != previous) {
      previous = track.artistId;
      artist = &append(category, menu(track.artistName, track.artistId, 4));
    }
    PlainNode* album = findChild(*artist, track.albumName, track.albumId);
    if (album == nullptr) album = &append(*artist, menu(track.albumName, track.albumId, 3));
    append(*album, leaf(track));
  }
}

void addAlbums(const PlainInventory& inventory, PlainNode& category) {
  std::uint32_t previous = kNoGroup;
  PlainNode* album = nullptr;
  for (const auto& [key, mediaId] : inventory.albumIndex) {
    const PlainTrack& track = *inventory.tracksById.at(mediaId);
    if (album == nullptr || track.albumId != previous) {
      previous = track.albumId;
      auto node = menu(track.albumName, track.albumId, 3);
      album = findChild(category, node->name, node->mediaId);
      if (album == nullptr) album = &append(category, std::move(node));
    }
    append(*album, leaf(track));
  }
}

void addSongs(const PlainInventory& inventory, PlainNode& category) {
  for (const PlainTrack* const track : inventory.trackList) append(category, leaf(*track));
}

void addGenres(const PlainInventory& inventory, PlainNode& category) {
  std::uint32_t previous = kNoGroup;
  PlainNode* genre = nullptr;
  for (const auto& [key, mediaId] : inventory.genreIndex) {
    const PlainTrack& track = *inventory.tracksById.at(mediaId);
    if (genre == nullptr || track.genreId != previous) {
      previous = track.genreId;
      genre = &append(category, menu(track.genreName, track.genreId, 5));
    }
    append(*genre, leaf(track));
  }
}

void addRatings(const PlainInventory& inventory, PlainNode& category) {
  const std::array<const char*, 3> names{"One Star", "Two Stars", "Three Stars"};
  std::array<PlainNode*, 3> stars{};
  for (std::uint32_t i = 3; i-- > 0;) {
    stars.at(i) = &append(category, menu(names.at(i), 0, 11 + i));
    stars.at(i)->nodeType = 0;  // unlike any other menu's
  }
  for (const auto& [key, mediaId] : inventory.ratingIndex) {
    const PlainTrack& track = *inventory.tracksById.at(mediaId);
    if (track.rating >= 1 && track.rating <= 3) append(*stars.at(track.rating - 1), leaf(track));
  }
}

bool holdsSortedChildren(const PlainNode& node) {
  return node.recType == 3 || node.recType == 4 || node.recType == 5 || node.name == "Artists" ||
         node.name == "Albums" || node.name == "Geners" || node.name == "Songs";
}

}  // namespace

void plainSetName(PlainNode& node, const std::string& name) {
  node.name = name.size() <= 64 ? name : name.substr(0, 62) + node.name;
}

std::unique_ptr<PlainNode> plainRoot() {
  return menu("root", 0, 7);
}

void plainBuildMenu(const PlainInventory& inventory, PlainNode& root) {
  addPlaylists(inventory, append(root, menu("Playlists", 0, 7)));
  addArtists(inventory, append(root, menu("Artists", 0, 7)));
  addAlbums(inventory, append(root, menu("Albums", 0, 7)));
  addSongs(inventory, append(root, menu("Songs", 0, 7)));
  addGenres(inventory, append(root, menu("Genres", 0, 7)));
  addRatings(inventory, append(root, menu("Favorites", 0, 7)));
}

void plainSortTree(PlainNode& node) {
  for (const std::unique_ptr<PlainNode>& child : node.children) {
    if (!holdsSortedChildren(*child)) continue;
    std::sort(child->children.begin(), child->children.end(),
              [](const auto& left, const auto& right) { return left->name < right->name; });
  }
  for (const std::unique_ptr<PlainNode>& child : node.children) {
    if (child->nodeType != 2) plainSortTree(*child);
  }
}

}  // namespace Orvane::plain
