#pragma once

#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/list_files.h"
#include "test_support.h"

namespace Orvane::test {

// What reading two list files came to.
struct ListReading {
  std::unique_ptr<TrackManager> manager = std::make_unique<TrackManager>();
  std::string output;      // on standard output
  std::string complaints;  // on standard error

  // One text a track: media id, title, then id and name of artist, album and genre, and the rating.
  std::vector<std::string> tracks() const {
    std::vector<std::string> texts;
    for (auto it = manager->tracksBegin(); it != manager->tracksEnd(); ++it) {
      const Track& track = **it;
      std::ostringstream text;
      text << track.getMediaId() << " '" << track.getTitle() << "' " << track.getArtistId() << " '"
           << track.getArtistName() << "' " << track.getAlbumId() << " '" << track.getAlbumName()
           << "' " << track.getGenreId() << " '" << track.getGenreName() << "' "
           << track.getRating();
      texts.push_back(text.str());
    }
    return texts;
  }

  // One text a playlist: its id and name, then the titles of its tracks.
  std::vector<std::string> playlists() const {
    std::vector<std::string> texts;
    for (auto it = manager->playlistsBegin(); it != manager->playlistsEnd(); ++it) {
      std::ostringstream text;
      text << (*it)->getPlaylistId() << " '" << (*it)->getName() << "'";
      for (const Track* const track : (*it)->getTracks()) text << " " << track->getTitle();
      texts.push_back(text.str());
    }
    return texts;
  }
};

// Stand for a content: no such file, a folder of that name.
inline constexpr std::string_view kMissing = "no file";
inline constexpr std::string_view kFolder = "a folder";

// Reads files "tracks.txt" and "playlists.txt" with these contents; the folder that they are in
// is left out of the texts.
inline ListReading readLists(std::string_view tracks, std::string_view playlists,
                             bool withPlaylistIds = true) {
  const TempDir dir;
  const auto make = [&](const char* name, std::string_view content) {
    if (content == kFolder) {
      std::filesystem::create_directory(dir / name);
    } else if (content != kMissing) {
      writeFile(dir / name, content);
    }
    return dir / name;
  };
  const auto withoutFolder = [&](std::string text) {
    const std::string folder = dir / "";
    for (std::size_t at = 0; (at = text.find(folder)) != std::string::npos;) {
      text.erase(at, folder.size());
    }
    return text;
  };

  ListReading reading;
  const std::string tracksPath = make("tracks.txt", tracks);
  const std::string playlistsPath = make("playlists.txt", playlists);
  const CapturedStream output(std::cout);
  const CapturedStream complaints(std::cerr);
  readInventoryFiles(*reading.manager, tracksPath.c_str(), playlistsPath.c_str(), withPlaylistIds);
  reading.output = withoutFolder(output.text());
  reading.complaints = withoutFolder(complaints.text());
  return reading;
}

inline ListReading readTracks(std::string_view tracks) {
  return readLists(tracks, "");
}

}  // namespace Orvane::test
