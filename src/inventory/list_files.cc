#include "inventory/list_files.h"

#include <iostream>

#include "errors/printable.h"
#include "inventory/decimal_number.h"
#include "inventory/id_map.h"
#include "inventory/line_reader.h"

namespace Orvane {

namespace {

constexpr std::string_view kSeparator = "|";
constexpr std::size_t kRequiredFields = 8;
constexpr std::size_t kUsedFields = 9;

// The track of each media id that has come more than once in the tracks file, as it came last:
// playlists name that one, while the manager keeps to the first.
using LaterTracks = IdMap<const Track*>;

std::uint32_t parseId(std::string_view text) {
  return static_cast<std::uint32_t>(parseDecimal(text));
}

bool reportUnopened(const LineReader& reader, const char* path) {
  if (!reader.isOpen()) std::cout << "Unable to open file " << path;
  return !reader.isOpen();
}

void readTracks(TrackManager& manager, const char* path, LaterTracks& laterTracks) {
  LineReader reader(path);
  if (reportUnopened(reader, path)) return;
  std::vector<std::string_view> fields;
  while (!reader.atEnd()) {
    const std::string_view line = reader.next();
    if (line.find(kSeparator) == std::string_view::npos) continue;
    fields.clear();
    splitFields(line, fields, kSeparator, kUsedFields);
    if (fields.size() < kRequiredFields) {
      std::cerr << printable(path) << ":" << reader.lineNumber() << ": expected " << kRequiredFields
                << " fields, found " << fields.size() << ": line skipped" << std::endl;
      continue;
    }
    const std::uint32_t mediaId = parseId(fields[0]);
    const std::uint32_t rating = fields.size() < kUsedFields ? 0 : parseId(fields[8]);
    const Track* const track =
        manager.addTrack(fields[1], mediaId, fields[3], parseId(fields[2]), fields[5],
                         parseId(fields[4]), fields[7], parseId(fields[6]), rating);
    if (manager.findTrack(mediaId) != track) *laterTracks.enter(mediaId).first = track;
  }
}

// Reads the playlist's media ids from the line `line` on, up to the -1 that closes it.
void readEntries(const TrackManager& manager, LineReader& reader, std::string_view line,
                 const char* path, const LaterTracks& laterTracks, Playlist& playlist) {
  for (; parseDecimal(line) != -1; line = reader.next()) {
    const std::uint32_t mediaId = parseId(line);
    if (manager.hasTrack(mediaId) && !(line.empty() && reader.atEnd())) {
      const Track* const* const later = laterTracks.find(mediaId);
      playlist.getTracks().push_back(later ? *later : manager.findTrack(mediaId));
    }
    if (reader.atEnd()) {
      const std::size_t lastLine = reader.lineNumber() - (line.empty() ? 1 : 0);
      std::cerr << printable(path) << ":" << lastLine << ": playlist \""
                << printable(playlist.getName()) << "\" has no closing -1" << std::endl;
      return;
    }
  }
}

void readPlaylists(TrackManager& manager, const char* path, bool withPlaylistIds,
                   const LaterTracks& laterTracks) {
  LineReader reader(path);
  if (reportUnopened(reader, path)) return;
  std::string name;
  while (true) {
    name = reader.next();
    if (reader.atEnd()) return;
    if (name.empty()) continue;

    Playlist* playlist = nullptr;
    if (withPlaylistIds) {
      const std::string_view idLine = reader.next();
      if (idLine.empty()) continue;
      playlist = manager.addPlaylist(name, parseId(idLine));
    } else {
      playlist = manager.addPlaylist(name);
    }
    const std::string_view firstEntry = reader.next();
    if (!firstEntry.empty()) {
      readEntries(manager, reader, firstEntry, path, laterTracks, *playlist);
    }
  }
}

}  // namespace

void readInventoryFiles(TrackManager& manager, const char* tracksFile, const char* playlistsFile,
                        bool withPlaylistIds) {
  LaterTracks laterTracks;
  readTracks(manager, tracksFile, laterTracks);
  readPlaylists(manager, playlistsFile, withPlaylistIds, laterTracks);
}

void splitFields(std::string_view line, std::vector<std::string_view>& fields,
                 std::string_view separators, std::size_t limit) {
  for (std::size_t i = 0; i < limit; ++i) {
    const std::size_t begin = line.find_first_not_of(separators);
    if (begin == std::string_view::npos) return;
    line.remove_prefix(begin);
    const std::size_t end =
        separators.size() == 1 ? line.find(separators.front()) : line.find_first_of(separators);
    fields.push_back(line.substr(0, end));
    if (end == std::string_view::npos) return;
    line.remove_prefix(end);
  }
}

void printInventory(const TrackManager& manager) {
  const std::string rule(48, '=');
  // Ids show as signed numbers here.
  const auto number = [](std::uint32_t id) { return static_cast<std::int32_t>(id); };

  std::cout << rule << "\nTRACKS:\n";
  for (auto it = manager.tracksBegin(); it != manager.tracksEnd(); ++it) {
    const Track& track = **it;
    std::cout << track << " | " << track.getGenreName() << " | \n  " << number(track.getMediaId())
              << " | " << number(track.getArtistId()) << " | " << number(track.getAlbumId())
              << " | " << number(track.getGenreId()) << " | \n";
  }
  std::cout << "\nPLAYLISTS:\n";
  for (auto it = manager.playlistsBegin(); it != manager.playlistsEnd(); ++it) {
    std::cout << (*it)->getName() << "\n";
    for (const Track* track : (*it)->getTracks()) std::cout << " | " << track->getTitle();
    std::cout << "\n";
  }
  std::cout << rule << "\n";
}

}  // namespace Orvane
