#include "sample_tree.h"

#include "inventory/menu_builder.h"
#include "song.h"

namespace bench {

SampleTree::SampleTree(std::uint32_t tracks) {
  for (std::uint32_t i = 0; i < tracks; ++i) {
    const Song song = songOfLibrary(i, tracks);
    manager.addTrack(song.title, song.mediaId, song.artistName, song.artistId, song.albumName,
                     song.albumId, song.genreName, song.genreId, song.rating);
  }
  buildMenuFromInventory(manager, tree);
}

}  // namespace bench
