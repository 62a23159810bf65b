#include "reader/node_kind.h"

#include "tree/menu_node.h"

namespace Orvane {

std::string_view kindOf(bool leaf, std::uint8_t recType) {
  if (leaf) return "media";
  switch (recType) {
    case RecType::kAlbum:
      return "album";
    case RecType::kArtist:
      return "artist";
    case RecType::kGenre:
      return "genre";
    case RecType::kPlaylist:
      return "playlist";
    case RecType::kOneStar:
      return "one-star";
    case RecType::kTwoStars:
      return "two-stars";
    case RecType::kThreeStars:
      return "three-stars";
    default:
      return "menu";
  }
}

bool isUsualRecType(bool leaf, std::uint8_t recType) {
  if (leaf) return recType == RecType::kMediaLeaf;
  return recType == RecType::kPlainMenu || kindOf(false, recType) != "menu";
}

}  // namespace Orvane
