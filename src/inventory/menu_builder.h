#pragma once

#include "inventory/track_manager.h"
#include "tree/menu_tree.h"

namespace Orvane {

// Appends the six categories "Playlists", "Artists", "Albums", "Songs", "Genres" and "Favorites" to
// the tree's root, in this order, and fills them from the manager, several at a time when there is
// much to do. Empty categories are made too; "Favorites" always has its three star menus.
//
// Nodes refer to the manager's tracks and texts: the manager must outlive the tree, and its tracks
// must not be changed while the tree is in use. It may be cleared: it goes on owning them. Throws
// only for lack of memory.
void buildMenuFromInventory(const TrackManager& manager, MenuTree& tree);

// The same, and clears the manager: bit by bit, so that what its indexes took is there for menus.
// After an exception it may only be cleared or destroyed.
void turnInventoryIntoMenu(TrackManager& manager, MenuTree& tree);

// The parts of buildMenuFromInventory, each filling its category's menu, which must be empty. A
// track has a leaf of its own in every place where it belongs.

// A menu a playlist, in their order, with a leaf an entry.
void addPlaylistsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category);

// A menu for each run of one artist's tracks in the order of artists' names, in it a menu an album,
// by whole name and id, in the order in which albums first come up. Where artists of equal names
// alternate, an artist has several runs and so several menus; they are not merged.
void addArtistsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category);

// A menu an album, by stored name and id: unlike artists, an album has just one.
void addAlbumsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category);

// A leaf for every registered track.
void addSongsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category);

// A menu for each run of one genre's tracks, as with artists.
void addGenresMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category);

// The star menus with the tracks rated 1 to 3; other ratings are in none.
void addRatingsMenu(const TrackManager& manager, MenuTree& tree, MenuNode& category);

}  // namespace Orvane
