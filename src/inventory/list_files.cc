#include "inventory/list_files.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iostream>

#include "errors/printable.h"
#include "inventory/byte_scan.h"
#include "inventory/decimal_number.h"
#include "inventory/id_map.h"
#include "inventory/line_reader.h"

namespace Orvane {

namespace {

constexpr std::string_view kSeparator = "|";
constexpr std::size_t kRequiredFields = 8;
constexpr std::size_t kUsedFields = 9;
constexpr std::size_t kLinesAtATime = 16;

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

// A track as its line gives it; the texts are in the line.
struct TrackLine {
  std::string_view title;
  std::string_view artistName;
  std::string_view albumName;
  std::string_view genreName;
  std::uint32_t rating;
};

TrackIds parseIds(const std::vector<std::string_view>& fields) {
  return {parseId(fields[0]), parseId(fields[2]), parseId(fields[4]), parseId(fields[6])};
}

void readTracks(TrackManager& manager, const char* path, LaterTracks& laterTracks) {
  LineReader reader(path);
  if (reportUnopened(reader, path)) return;
  std::array<std::string_view, kLinesAtATime> lines;
  std::vector<std::string_view> fields;
  std::vector<TrackLine> tracks;
  std::vector<TrackIds> ids;  // of the same tracks
  while (!reader.atEnd()) {
    tracks.clear();
    ids.clear();
    const std::size_t count = reader.nextLines(lines);
    for (std::size_t i = 0; i < count; ++i) {
      fields.clear();
      splitFields(lines[i], fields, kSeparator, kUsedFields);
      if (fields.size() >= kRequiredFields) {
        const std::uint32_t rating = fields.size() < kUsedFields ? 0 : parseId(fields[8]);
        tracks.push_back({fields[1], fields[3], fields[5], fields[7], rating});
        ids.push_back(parseIds(fields));
      } else if (lines[i].find(kSeparator) != std::string_view::npos) {
        std::cerr << printable(path) << ":" << reader.lineNumber() - count + 1 + i << ": expected "
                  << kRequiredFields << " fields, found " << fields.size() << ": line skipped"
                  << std::endl;
      }
    }
    manager.expectTracks(ids);
    for (std::size_t i = 0; i < tracks.size(); ++i) {
      const TrackLine& line = tracks[i];
      const Track* const track =
          manager.addTrack(line.title, ids[i].media, line.artistName, ids[i].artist, line.albumName,
                           ids[i].album, line.genreName, ids[i].genre, line.rating);
      if (manager.findTrack(ids[i].media) != track) {
        *laterTracks.enter(ids[i].media).first = track;
      }
    }
  }
}

// The lines of a playlists file. Most are media ids: where the next ones lead is asked for in time.
class PlaylistLines {
 public:
  PlaylistLines(LineReader& reader, const TrackManager& manager)
      : reader_(reader), manager_(manager) {}

  // As LineReader has it. A line is good until the next call.
  std::string_view next() {
    if (at_ == count_) takeMore();
    return lines_[at_++];
  }
  bool atEnd() const { return at_ == count_ && reader_.atEnd(); }
  std::size_t lineNumber() const { return reader_.lineNumber() - (count_ - at_); }

 private:
  void takeMore() {
    count_ = reader_.nextLines(lines_);
    at_ = 0;
    std::array<std::uint32_t, kLinesAtATime> ids;
    std::transform(lines_.begin(), lines_.begin() + count_, ids.begin(), parseId);
    manager_.expectLookups({ids.data(), count_});
  }

  LineReader& reader_;
  const TrackManager& manager_;
  std::array<std::string_view, kLinesAtATime> lines_;
  std::size_t count_ = 0;
  std::size_t at_ = 0;
};

// Reads the playlist's media ids from the line `line` on, up to the -1 that closes it.
void readEntries(const TrackManager& manager, PlaylistLines& lines, std::string_view line,
                 const char* path, const LaterTracks& laterTracks, Playlist& playlist) {
  for (; parseDecimal(line) != -1; line = lines.next()) {
    const std::uint32_t mediaId = parseId(line);
    const Track* const first = manager.findTrack(mediaId);
    if (first != nullptr && !(line.empty() && lines.atEnd())) {
      const Track* const* const later = laterTracks.find(mediaId);
      playlist.getTracks().push_back(later ? *later : first);
    }
    if (lines.atEnd()) {
      const std::size_t lastLine = lines.lineNumber() - (line.empty() ? 1 : 0);
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
  PlaylistLines lines(reader, manager);
  std::string name;
  while (true) {
    name = lines.next();
    if (lines.atEnd()) return;
    if (name.empty()) continue;

    Playlist* playlist = nullptr;
    if (withPlaylistIds) {
      const std::string_view idLine = lines.next();
      if (idLine.empty()) continue;
      playlist = manager.addPlaylist(name, parseId(idLine));
    } else {
      playlist = manager.addPlaylist(name);
    }
    const std::string_view firstEntry = lines.next();
    if (!firstEntry.empty()) {
      readEntries(manager, lines, firstEntry, path, laterTracks, *playlist);
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
  std::size_t left = limit;
  std::size_t begin = 0;
  const auto endField = [&](std::size_t end) {
    if (left > 0 && end > begin) {
      fields.push_back(line.substr(begin, end - begin));
      --left;
    }
    begin = end + 1;
    return left > 0;
  };
  if (separators.size() == 1) {
    forEachOccurrence(line, separators.front(), endField);
  } else {
    for (std::size_t end = 0; left > 0;) {
      end = line.find_first_of(separators, begin);
      if (end == std::string_view::npos) break;
      endField(end);
    }
  }
  if (begin < line.size()) endField(line.size());
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
