#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace bench {

// A kind of input that can be made in any size.
struct Shape {
  std::string_view name;
  std::string_view description;
  // Writes the shape's files, of `size` tracks, menus or the like, into an existing directory.
  void (*write)(std::uint32_t size, const std::string& directory);
};

// Shapes of tracks.txt and playlists.txt, and of menu.xml.
std::span<const Shape> listShapes();
std::span<const Shape> xmlShapes();

}  // namespace bench
