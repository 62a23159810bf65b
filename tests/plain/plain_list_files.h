#pragma once

#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "plain/plain_inventory.h"

namespace Orvane::plain {

// What reading two list files came to, besides the inventory.
struct PlainReading {
  std::string output;  // on standard output
  // The lines on standard error, in order, such as "tracks.txt:12: expected 8 fields, found 7: line
  // skipped".
  std::vector<std::string> complaints;
};

std::vector<std::string> plainSplit(std::string_view line, std::string_view separators);

// `tracks` and `playlists` are read to their ends, or not at all when null: those stand for files
// that cannot be opened. The names are for the messages.
PlainReading plainReadLists(PlainInventory& inventory, std::istream* tracks,
                            const std::string& tracksName, std::istream* playlists,
                            const std::string& playlistsName, bool withPlaylistIds);

// The same for files. A folder counts as a file that cannot be opened.
PlainReading plainReadListFiles(PlainInventory& inventory, const std::string& tracksPath,
                                const std::string& playlistsPath, bool withPlaylistIds);

}  // namespace Orvane::plain
