#pragma once

namespace Orvane {

// The positional command line of older installations, a whole run of its own:
//   --one-table|--two-table [--playlistID] TRACKS PLAYLISTS OUTPUT [XML]
// The XML menu tree, when there is one, comes behind the inventory's categories in the same tree.
//
// Takes main's arguments. Always returns 0: hints and complaints are on standard output. Catches
// nothing: what a reader or writer throws passes through, and the output is then incomplete.
int legacyMain(int argc, char** argv);

}  // namespace Orvane
