#include "song.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "random.h"
#include "word_names.h"

namespace bench {

namespace {

constexpr auto kGenres = std::to_array<std::string_view>({
    "Alternative", "Ambient", "Blues",   "Chanson",    "Classical",  "Country", "Dance",
    "Electronic",  "Folk",    "Hip-Hop", "Indie Rock", "Jazz",       "Metal",   "Pop",
    "Punk",        "Reggae",  "Rock",    "Soul",       "Soundtrack", "World",
});
constexpr auto kGenreCount = static_cast<std::uint32_t>(kGenres.size());

// Keep apart the random numbers of songs and albums.
constexpr std::uint64_t kSongSeed = 0x536F6E6700000000;
constexpr std::uint64_t kAlbumSeed = 0x416C62756D000000;

}  // namespace

Song songOfLibrary(std::uint32_t number, std::uint32_t tracks) {
  const std::uint32_t artists = std::max(1U, tracks / 59);
  const std::uint32_t albums = std::max(1U, tracks / 18);

  Random ofSong(kSongSeed + number);
  const std::uint32_t album = ofSong.below(albums);
  Random ofAlbum(kAlbumSeed + album);
  const std::uint32_t artist = ofAlbum.below(artists);
  const std::uint32_t genre = artist % kGenreCount;

  Song song;
  song.mediaId = mediaIdOf(number);
  song.title = randomName(ofSong, 2 + ofSong.below(4));
  song.artistId = 1 + artist;
  song.artistName = distinctName(artist);
  song.albumId = 1 + album;
  song.albumName = randomName(ofAlbum, 2 + ofAlbum.below(4));
  song.genreId = 1 + genre;
  song.genreName = kGenres[genre];
  song.rating = ofSong.below(20) == 0 ? 1 + ofSong.below(3) : 0;
  return song;
}

void addSong(TextFile& file, const Song& song) {
  file.add(song.mediaId, '|', song.title, '|', song.artistId, '|', song.artistName, '|',
           song.albumId, '|', song.albumName, '|', song.genreId, '|', song.genreName, '|',
           song.rating, '\n');
}

}  // namespace bench
