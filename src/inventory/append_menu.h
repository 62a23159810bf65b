#pragma once

#include <cstdint>
#include <string_view>

#include "tree/menu_node.h"
#include "tree/track.h"

namespace Orvane {

// Makes a fresh node a menu. The name's bytes must outlive it, here and below.
inline void fillMenu(MenuNode& menu, std::string_view name, std::uint32_t recType,
                     std::uint32_t id) {
  menu.setBorrowedName(name);
  menu.setNodeType(NODE_TYPE_MENU);
  menu.setRecType(recType);
  menu.setMediaId(id);
}

inline MenuNode& appendMenu(MenuNode& parent, std::string_view name, std::uint32_t recType,
                            std::uint32_t id) {
  return parent.appendChild([&](MenuNode& menu) { fillMenu(menu, name, recType, id); });
}

// Appends a menu of the track's album.
inline MenuNode& appendAlbum(MenuNode& parent, const Track& track) {
  return appendMenu(parent, track.getAlbumName(), RecType::kAlbum, track.getAlbumId());
}

}  // namespace Orvane
