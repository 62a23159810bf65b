#pragma once

#include <cstddef>
#include <limits>
#include <string_view>
#include <vector>

#include "inventory/track_manager.h"

namespace Orvane {

// Reads the tracks file, then the playlists file into the manager; docs/list-files.md describes
// both. With `withPlaylistIds` each playlist's name is followed by a line with its id.
//
// A file that can't be opened is told on standard output, "Unable to open file " and the path, and
// counts as empty. Lines that can't be used are told on standard error and skipped. Throws
// OVReadError when a file can't be read to its end.
void readInventoryFiles(TrackManager& manager, const char* tracksFile, const char* playlistsFile,
                        bool withPlaylistIds);

// Appends to `fields` the runs of characters of `line` that are no separators, at most `limit` of
// them; the views are into `line`. Several separators in a row count as one and those at either end
// for nothing, so that no field is ever empty: in a tracks file, an empty field is no field, and
// the later ones move one place to the left. That is deliberate.
void splitFields(std::string_view line, std::vector<std::string_view>& fields,
                 std::string_view separators,
                 std::size_t limit = std::numeric_limits<std::size_t>::max());

// Prints what the manager holds to standard output, for looking at.
void printInventory(const TrackManager& manager);

}  // namespace Orvane
