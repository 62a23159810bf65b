#include "inventory/list_files.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iostream>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "errors/printable.h"
#include "inventory/decimal_number.h"
#include "inventory/id_map.h"
#include "inventory/line_read_error.h"
#include "inventory/line_reader.h"
#include "inventory/track_batch.h"
#include "tree/made_ahead.h"
#include "tree/pages_ahead.h"
#include "tree/parallel.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

// How many entries' places in memory are asked for together.
constexpr std::size_t kLinesAtATime = 16;

// The track of each media id that has come more than once in the tracks file, as it came last:
// playlists name that one, while the manager keeps to the first.
using LaterTracks = IdMap<IdEntry<const Track*, nullptr>>;

bool reportUnopened(const LineReader& reader, const char* path) {
  if (!reader.isOpen()) std::cout << "Unable to open file " << path;
  return !reader.isOpen();
}

void addTracks(TrackManager& manager, const TrackBatch& batch, const char* path,
               LaterTracks& laterTracks) {
  batch.reportSkipped(path);
  manager.takeTitlesIn(batch.titles());
  const std::span<const TrackIds> allIds = batch.ids();
  const auto add = [&](std::size_t i) {
    const TrackBatch::Texts& texts = batch.texts()[i];
    const TrackIds& ids = allIds[i];
    const Track* const track =
        manager.addTrack(texts.title, ids.media, texts.artistName, ids.artist, texts.albumName,
                         ids.album, texts.genreName, ids.genre, texts.rating);
    if (manager.getIndex().numberOf(*track) == 0) {
      laterTracks.enter({ids.media, track}).value = track;
    }
  };
  forEachPrefetched(
      allIds.size(), add, [&](std::size_t i) { manager.expectTrack(allIds[i], 0); },
      [&](std::size_t i) { manager.expectTrack(allIds[i], 1); },
      [&](std::size_t i) { manager.expectTrack(allIds[i], 2); });
}

void readTracks(TrackManager& manager, const char* path, LaterTracks& laterTracks) {
  constexpr std::size_t kFirstLines = 8192;
  constexpr std::size_t kBatchLines = 256;
  constexpr std::size_t kBatches = 8;     // lines may be long
  constexpr std::size_t kMenuBytes = 16;  // about what a track takes in menus, which come next

  LineReader reader(path);
  if (reportUnopened(reader, path)) return;
  // Where there is no second processor, or not yet enough to do for two threads.
  const std::size_t linesAlone =
      usableProcessors() < 2 ? std::numeric_limits<std::size_t>::max() : kFirstLines;
  const auto trackCount = [&] {
    return static_cast<std::size_t>(manager.tracksEnd() - manager.tracksBegin());
  };
  const std::size_t tracksBefore = trackCount();
  TrackBatch first;
  while (!reader.atEnd() && reader.lineNumber() < linesAlone) {
    first.take(reader, kBatchLines, false);
    first.parse(manager.getTitleStore());
    addTracks(manager, first, path, laterTracks);
  }
  if (reader.atEnd()) return;
  // As many of the lines will be tracks as of those so far.
  const std::size_t tracks =
      reader.expectedLines() * (trackCount() - tracksBefore) / reader.lineNumber();
  manager.expectTracks(tracks);
  std::optional<PagesForLater> forMenus;
  forEachMadeAhead<TrackBatch, kBatches>(
      [&](TrackBatch& batch) {
        if (reader.atEnd()) return false;
        batch.take(reader, kBatchLines, true);
        return true;
      },
      [&](TrackBatch& batch) { batch.parse(manager.getTitleStore()); },
      [&](const TrackBatch& batch) {
        addTracks(manager, batch, path, laterTracks);
        // Not before some of the tracks expected have really come.
        if (!forMenus && trackCount() - tracksBefore > tracks / 16) {
          forMenus.emplace(tracks * kMenuBytes);
        }
      });
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
      const auto* const later = laterTracks.find(mediaId);
      playlist.getTracks().push_back(later ? later->value : first);
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
  try {
    LaterTracks laterTracks;
    readTracks(manager, tracksFile, laterTracks);
    readPlaylists(manager, playlistsFile, withPlaylistIds, laterTracks);
  } catch (const LineReadError& error) {
    std::cerr << error.explanation() << std::endl;
    throw;
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
