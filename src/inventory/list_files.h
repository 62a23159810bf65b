#pragma once

#include "inventory/track_manager.h"

namespace Orvane {

// Reads the tracks file, then the playlists file into the manager; docs/list-files.md describes
// both. With `withPlaylistIds` each playlist's name is followed by a line with its id.
//
// A file that can't be opened is told on standard output, "Unable to open file " and the path, and
// counts as empty. Lines that can't be used are told on standard error and skipped. Throws
// OVReadError, after naming file, line and reason on standard error, when a file can't be read to
// its end.
void readInventoryFiles(TrackManager& manager, const char* tracksFile, const char* playlistsFile,
                        bool withPlaylistIds);

// Prints what the manager holds to standard output, for looking at.
void printInventory(const TrackManager& manager);

}  // namespace Orvane
