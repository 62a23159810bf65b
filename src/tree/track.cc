#include "tree/track.h"

namespace Orvane {

std::ostream& operator<<(std::ostream& out, const Track& track) {
  return out << track.getTitle() << " | " << track.getArtistName() << " | " << track.getAlbumName();
}

}  // namespace Orvane
