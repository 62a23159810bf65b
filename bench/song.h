#pragma once

#include <cstdint>
#include <string>

#include "text_file.h"

namespace bench {

// A line of a tracks file.
struct Song {
  std::uint32_t mediaId = 0;
  std::string title;
  std::uint32_t artistId = 0;
  std::string artistName;
  std::uint32_t albumId = 0;
  std::string albumName;
  std::uint32_t genreId = 0;
  std::string genreName;
  std::uint32_t rating = 0;
};

// The media id of song `number`: not consecutive, so that nobody takes it for a position.
inline std::uint32_t mediaIdOf(std::uint32_t number) {
  return 1'000'000 + 3 * number;
}

// Song `number` of a library of `tracks` songs, as a collector has it: 59 songs an artist, 18 an
// album, which stand anywhere in the file; 20 genres, of which an artist has one; a rating on every
// twentieth song, the ninth field being there all the same. Any song can be had at any time.
Song songOfLibrary(std::uint32_t number, std::uint32_t tracks);

void addSong(TextFile& file, const Song& song);

}  // namespace bench
