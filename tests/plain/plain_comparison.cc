#include "plain/plain_comparison.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <vector>

namespace Orvane::plain {
namespace {

std::string text(const Track& track) {
  std::ostringstream out;
  out << track.getMediaId() << " '" << track.getTitle() << "' by " << track.getArtistId() << " '"
      << track.getArtistName() << "' on " << track.getAlbumId() << " '" << track.getAlbumName()
      << "' in " << track.getGenreId() << " '" << track.getGenreName() << "' rated "
      << track.getRating();
  return out.str();
}

std::string text(const PlainTrack& track) {
  std::ostringstream out;
  out << track.mediaId << " '" << track.title << "' by " << track.artistId << " '"
      << track.artistName << "' on " << track.albumId << " '" << track.albumName << "' in "
      << track.genreId << " '" << track.genreName << "' rated " << track.rating;
  return out.str();
}

template <typename SomeTrack>
std::string text(const SomeTrack* track) {
  return track == nullptr ? "no track" : text(*track);
}

std::string text(const MenuNode& node) {
  std::ostringstream out;
  out << node.getNodeType() << ' ' << node.getMediaId() << " '" << node.getName() << "' "
      << node.getRecType() << ' ' << node.getRating() << ' ' << node.getAttribMask() << ", "
      << node.childCount() << " children, " << text(node.getTrack());
  return out.str();
}

std::string text(const PlainNode& node) {
  std::ostringstream out;
  out << node.nodeType << ' ' << node.mediaId << " '" << node.name << "' " << node.recType << ' '
      << node.rating << ' ' << node.attribMask << ", " << node.children.size() << " children, "
      << text(node.track);
  return out.str();
}

std::string unequal(const std::string& what, const std::string& is, const std::string& plain) {
  return is == plain ? "" : what + " is " + is + ", but plainly " + plain;
}

std::string text(const Playlist& playlist) {
  std::ostringstream out;
  out << "playlist " << playlist.getPlaylistId() << " '" << playlist.getName() << "':";
  for (const Track* const track : playlist.getTracks()) out << " [" << text(track) << "]";
  return out.str();
}

std::string text(const PlainPlaylist& playlist) {
  std::ostringstream out;
  out << "playlist " << playlist.playlistId << " '" << playlist.name << "':";
  for (const PlainTrack* const track : playlist.tracks) out << " [" << text(track) << "]";
  return out.str();
}

template <typename Iterator>
std::string textOfAll(Iterator begin, Iterator end) {
  std::string all;
  for (Iterator it = begin; it != end; ++it) all += text(**it) + "\n";
  return all;
}

std::string category(const TrackManager& manager, const CategoryIndex& index) {
  std::string ids;
  for (const Track* const track : manager.getIndex().tracksInOrder(index)) {
    ids += " " + std::to_string(track->getMediaId());
  }
  return ids;
}

template <typename Index>
std::string category(const Index& index) {
  std::string ids;
  for (const auto& [key, mediaId] : index) ids += " " + std::to_string(mediaId);
  return ids;
}

}  // namespace

std::string differenceOf(const MenuNode& node, const PlainNode& plain) {
  struct Pair {
    const MenuNode* node;
    const PlainNode* plain;
    std::string path;
  };
  std::vector<Pair> pending{{&node, &plain, "/"}};
  while (!pending.empty()) {
    const Pair pair = pending.back();
    pending.pop_back();
    std::string difference = unequal(pair.path, text(*pair.node), text(*pair.plain));
    if (!difference.empty()) return difference;
    for (std::size_t i = pair.plain->children.size(); i-- > 0;) {
      const PlainNode& child = *pair.plain->children[i];
      pending.push_back({pair.node->childrenBegin()[i], &child,
                         pair.path + std::to_string(i) + " '" + child.name + "'/"});
    }
  }
  return "";
}

std::string differenceOf(const TrackManager& manager, const PlainInventory& plain) {
  const TrackIndex& index = manager.getIndex();
  std::string difference =
      unequal("the track list", textOfAll(manager.tracksBegin(), manager.tracksEnd()),
              textOfAll(plain.trackList.begin(), plain.trackList.end()));
  difference +=
      unequal("the playlists", textOfAll(manager.playlistsBegin(), manager.playlistsEnd()),
              textOfAll(plain.playlists.begin(), plain.playlists.end()));
  difference += unequal("the order of artists", category(manager, index.getArtists()),
                        category(plain.artistIndex));
  difference += unequal("the order of albums", category(manager, index.getAlbums()),
                        category(plain.albumIndex));
  difference += unequal("the order of genres", category(manager, index.getGenres()),
                        category(plain.genreIndex));
  difference += unequal("the order of ratings", category(manager, index.getRatings()),
                        category(plain.ratingIndex));
  for (const PlainTrack& track : plain.ownedTracks) {
    const std::uint32_t mediaId = track.mediaId;
    const auto found = plain.tracksById.find(mediaId);
    const PlainTrack* const first = found == plain.tracksById.end() ? nullptr : found->second;
    difference += unequal("the track under id " + std::to_string(mediaId),
                          text(manager.findTrack(mediaId)), text(first));
    if (manager.hasTrack(mediaId) != plain.hasTrack(mediaId)) {
      difference += "hasTrack(" + std::to_string(mediaId) + ") is wrong";
    }
    const auto inMap = [](const PlainNameMap& names, std::uint32_t id) {
      const auto entry = names.find(id);
      return entry == names.end() ? std::string() : entry->second;
    };
    const auto inIndex = [](const CategoryIndex& category, std::uint32_t id) {
      const NamedId* const entry = category.find(id);
      return entry == nullptr ? std::string() : std::string(entry->name());
    };
    difference += unequal("an artist's name", inIndex(index.getArtists(), track.artistId),
                          inMap(plain.artistNames, track.artistId));
    difference += unequal("an album's name", inIndex(index.getAlbums(), track.albumId),
                          inMap(plain.albumNames, track.albumId));
    difference += unequal("a genre's name", inIndex(index.getGenres(), track.genreId),
                          inMap(plain.genreNames, track.genreId));
  }
  return difference;
}

}  // namespace Orvane::plain
