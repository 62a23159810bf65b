#include <algorithm>
#include <array>
#include <cstddef>

#include "random.h"
#include "shapes.h"
#include "song.h"
#include "word_names.h"

namespace bench {

namespace {

constexpr std::uint64_t kPlaylistSeed = 0x4C69737473000000;

using Alter = void (*)(Song& song, std::uint32_t number);

// A library whose songs `alter` changes.
template <Alter alter>
void writeTracks(std::uint32_t tracks, const std::string& directory) {
  TextFile file(directory + "/tracks.txt");
  for (std::uint32_t i = 0; i < tracks; ++i) {
    Song song = songOfLibrary(i, tracks);
    alter(song, i);
    addSong(file, song);
  }
  file.close();
}

// `playlists` playlists with `length` entries each, drawn from the songs of a library.
void writePlaylists(std::uint32_t playlists, std::uint32_t length, std::uint32_t tracks,
                    const std::string& directory) {
  TextFile file(directory + "/playlists.txt");
  for (std::uint32_t i = 0; i < playlists; ++i) {
    Random random(kPlaylistSeed + i);
    file.add(randomName(random, 2), '\n', 1 + i, '\n');
    for (std::uint32_t entry = 0; entry < length; ++entry) {
      file.add(mediaIdOf(random.below(tracks)), '\n');
    }
    file.add("-1\n\n");
  }
  file.close();
}

// 500 playlists of 100 entries for a million tracks, and in that proportion.
template <Alter alter>
void writeLists(std::uint32_t tracks, const std::string& directory) {
  writeTracks<alter>(tracks, directory);
  writePlaylists(std::max(1U, tracks / 2000), 100, tracks, directory);
}

void keep(Song& /*song*/, std::uint32_t /*number*/) {}

void giveAlbum(Song& song, std::uint32_t number) {
  song.albumId = 1 + number;
  song.albumName = distinctName(number);
}

void giveAlbumOfOneArtist(Song& song, std::uint32_t number) {
  giveAlbum(song, number);
  song.artistId = 1;
  song.artistName = "Various Artists";
}

void giveAlbumOfItsArtist(Song& song, std::uint32_t number) {
  giveAlbum(song, number);
  song.artistId = 1 + number;
  song.artistName = distinctName(number);
}

void giveOneGenre(Song& song, std::uint32_t /*number*/) {
  song.genreId = 1;
  song.genreName = "Other";
}

void giveOneTitle(Song& song, std::uint32_t /*number*/) {
  song.title = "Untitled";
}

void giveOneNameEverywhere(Song& song, std::uint32_t number) {
  giveOneTitle(song, number);
  song.artistName = song.albumName = song.genreName = "Unknown";
}

void giveLateDifferingNames(Song& song, std::uint32_t number) {
  song.title = lateDifferingName(number);
  song.artistName = lateDifferingName(song.artistId);
  song.albumName = lateDifferingName(song.albumId);
}

void renameIds(Song& song, std::uint32_t number) {
  song.artistId = 1 + song.artistId % 1000;
  song.albumId = 1 + song.albumId % 1000;
  song.artistName = song.albumName = song.genreName = distinctName(number);
}

void giveOneMediaId(Song& song, std::uint32_t /*number*/) {
  song.mediaId = 7;
}

void rate(Song& song, std::uint32_t number) {
  song.rating = 1 + number % 3;
}

// A playlist an entry of which refers to one of a tenth as many tracks.
void writeOnePlaylist(std::uint32_t entries, const std::string& directory) {
  const std::uint32_t tracks = std::max(1U, entries / 10);
  writeTracks<keep>(tracks, directory);
  writePlaylists(1, entries, tracks, directory);
}

void writeManyPlaylists(std::uint32_t playlists, const std::string& directory) {
  const std::uint32_t tracks = std::max(1U, playlists / 10);
  writeTracks<keep>(tracks, directory);
  writePlaylists(playlists, 2, tracks, directory);
}

// In turns: a title, a run of separators and a line without any, each of a megabyte.
void writeLongLines(std::uint32_t lines, const std::string& directory) {
  constexpr std::size_t kMegabyte = 1'000'000;
  const std::string separators(kMegabyte, '|');
  const std::string words(kMegabyte, 'w');
  TextFile file(directory + "/tracks.txt");
  for (std::uint32_t i = 0; i < lines; ++i) {
    Song song = songOfLibrary(i, lines);
    switch (i % 3) {
      case 0:
        song.title += words;
        break;
      case 1:
        file.add(separators);
        break;
      default:
        file.add(words, '\n');
    }
    addSong(file, song);
  }
  file.close();
  writePlaylists(1, lines, lines, directory);
}

constexpr auto kShapes = std::to_array<Shape>({
    {"library", "a collector's tracks", writeLists<keep>},
    {"one-artist", "albums of one artist, a track each", writeLists<giveAlbumOfOneArtist>},
    {"artists", "albums of as many artists, a track each", writeLists<giveAlbumOfItsArtist>},
    {"one-genre", "tracks of one genre", writeLists<giveOneGenre>},
    {"one-title", "tracks of one title", writeLists<giveOneTitle>},
    {"one-name", "tracks whose names are all the same, ids are not",
     writeLists<giveOneNameEverywhere>},
    {"late-difference", "tracks whose names differ after 60 bytes",
     writeLists<giveLateDifferingNames>},
    {"one-playlist", "entries of one playlist", writeOnePlaylist},
    {"playlists", "playlists of two entries", writeManyPlaylists},
    {"renamed-ids", "tracks each of which gives its ids other names", writeLists<renameIds>},
    {"one-media-id", "tracks with the same media id", writeLists<giveOneMediaId>},
    {"rated", "tracks with a rating each", writeLists<rate>},
    {"long-lines", "lines of a megabyte", writeLongLines},
});

}  // namespace

std::span<const Shape> listShapes() {
  return kShapes;
}

}  // namespace bench
