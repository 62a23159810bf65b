#include "plain/plain_list_files.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "errors/printable.h"

namespace Orvane::plain {
namespace {

// By the signed number in a line's first field: the track read last with it.
using LatestTracks = std::map<int, const PlainTrack*>;

int number(const std::string& text) {
  return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

std::uint32_t id(const std::string& text) {
  return static_cast<std::uint32_t>(number(text));
}

std::string place(const std::string& name, int line) {
  return printable(name) + ":" + std::to_string(line) + ": ";
}

void readTracks(PlainInventory& inventory, std::istream& file, const std::string& name,
                LatestTracks& latest, PlainReading& reading) {
  std::string line;
  for (int lineNumber = 1; std::getline(file, line); ++lineNumber) {
    if (line.find('|') == std::string::npos) continue;
    const std::vector<std::string> fields = plainSplit(line, "|");
    if (fields.size() < 8) {
      reading.complaints.push_back(place(name, lineNumber) + "expected 8 fields, found " +
                                   std::to_string(fields.size()) + ": line skipped");
      continue;
    }
    PlainTrack track;
    track.mediaId = id(fields[0]);
    track.title = fields[1];
    track.artistId = id(fields[2]);
    track.artistName = fields[3];
    track.albumId = id(fields[4]);
    track.albumName = fields[5];
    track.genreId = id(fields[6]);
    track.genreName = fields[7];
    track.rating = fields.size() > 8 ? id(fields[8]) : 0;
    latest[number(fields[0])] = inventory.addTrack(track);
  }
}

// Reads lines and counts them.
struct Lines {
  std::istream& file;
  std::string line;
  int count = 0;

  // False when nothing is left; the line is empty then.
  bool next() {
    line.clear();
    if (!std::getline(file, line)) return false;
    ++count;
    return true;
  }
  // The last line had no line feed, or there was none left.
  bool atEnd() const { return file.eof(); }
};

void readPlaylists(PlainInventory& inventory, std::istream& file, const std::string& name,
                   bool withPlaylistIds, const LatestTracks& latest, PlainReading& reading) {
  Lines lines{file, {}, 0};
  for (;;) {
    if (!lines.next() || lines.atEnd()) return;
    if (lines.line.empty()) continue;
    const std::string playlistName = lines.line;
    std::uint32_t playlistId = 0;
    if (withPlaylistIds) {
      lines.next();
      if (lines.line.empty()) continue;
      playlistId = id(lines.line);
    }
    PlainPlaylist& playlist = *inventory.addPlaylist(playlistName, playlistId);
    lines.next();
    if (lines.line.empty()) continue;
    while (number(lines.line) != -1) {
      const int mediaId = number(lines.line);
      if (inventory.hasTrack(static_cast<std::uint32_t>(mediaId))) {
        playlist.tracks.push_back(latest.at(mediaId));
      }
      if (!lines.next()) {
        reading.complaints.push_back(place(name, lines.count) + "playlist \"" +
                                     printable(playlistName) + "\" has no closing -1");
        return;
      }
    }
  }
}

}  // namespace

std::vector<std::string> plainSplit(std::string_view line, std::string_view separators) {
  std::vector<std::string> fields;
  std::string field;
  for (const char character : line) {
    if (separators.find(character) == std::string_view::npos) {
      field += character;
    } else if (!field.empty()) {
      fields.push_back(field);
      field.clear();
    }
  }
  if (!field.empty()) fields.push_back(field);
  return fields;
}

PlainReading plainReadLists(PlainInventory& inventory, std::istream* tracks,
                            const std::string& tracksName, std::istream* playlists,
                            const std::string& playlistsName, bool withPlaylistIds) {
  PlainReading reading;
  LatestTracks latest;
  if (tracks == nullptr) {
    reading.output += "Unable to open file " + tracksName;
  } else {
    readTracks(inventory, *tracks, tracksName, latest, reading);
  }
  if (playlists == nullptr) {
    reading.output += "Unable to open file " + playlistsName;
  } else {
    readPlaylists(inventory, *playlists, playlistsName, withPlaylistIds, latest, reading);
  }
  return reading;
}

PlainReading plainReadListFiles(PlainInventory& inventory, const std::string& tracksPath,
                                const std::string& playlistsPath, bool withPlaylistIds) {
  std::ifstream tracks(tracksPath, std::ios::binary);
  std::ifstream playlists(playlistsPath, std::ios::binary);
  const bool hasTracks = tracks && !std::filesystem::is_directory(tracksPath);
  const bool hasPlaylists = playlists && !std::filesystem::is_directory(playlistsPath);
  return plainReadLists(inventory, hasTracks ? &tracks : nullptr, tracksPath,
                        hasPlaylists ? &playlists : nullptr, playlistsPath, withPlaylistIds);
}

}  // namespace Orvane::plain
