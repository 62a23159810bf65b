#include <algorithm>
#include <array>

#include "random.h"
#include "shapes.h"
#include "text_file.h"
#include "word_names.h"

namespace bench {

namespace {

constexpr std::uint64_t kMediaSeed = 0x4D65646961000000;
constexpr std::uint32_t kMediaPerAlbum = 10;
constexpr std::uint32_t kAlbumsPerArtist = 4;

constexpr std::string_view kOpening = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<inventory>\n";
constexpr std::string_view kClosing = "</inventory>\n";

// The shape of a tree: artists, their albums, ten media leaves an album; `elements` in all, with
// the document's root. Every media id comes once, and nearly every name.
void writeMenus(std::uint32_t elements, const std::string& directory) {
  TextFile file(directory + "/menu.xml");
  file.add(kOpening);
  std::uint32_t artist = 0;
  std::uint32_t media = 0;
  std::uint32_t left = elements - std::min(elements, 1U);
  while (left > 0) {
    file.add("  <menu name=\"", distinctName(artist), "\" rectype=\"4\">\n");
    --left;
    for (std::uint32_t album = 0; album < kAlbumsPerArtist && left > 0; ++album) {
      Random random(kMediaSeed + media);
      file.add("   <menu name=\"", randomName(random, 3), ' ', artist, "\" rectype=\"3\">\n");
      --left;
      const std::uint32_t leaves = std::min(left, kMediaPerAlbum);
      for (std::uint32_t i = 0; i < leaves; ++i, ++media) {
        file.add("    <media name=\"", randomName(random, 2 + random.below(4)),
                 "\" rectype=\"0\" mediaid=\"", 1'000'000 + media, "\" rating=\"", random.below(4),
                 "\"/>\n");
      }
      left -= leaves;
      file.add("   </menu>\n");
    }
    file.add("  </menu>\n");
    ++artist;
  }
  file.add(kClosing);
  file.close();
}

// Menus next to each other. In XML a menu's media id is always 0: only its name tells it from
// another one.
void writeFlatMenus(std::uint32_t menus, const std::string& directory) {
  TextFile file(directory + "/menu.xml");
  file.add(kOpening);
  for (std::uint32_t i = 0; i < menus; ++i) {
    file.add("<menu name=\"", distinctName(i), "\"/>\n");
  }
  file.add(kClosing);
  file.close();
}

constexpr auto kShapes = std::to_array<Shape>({
    {"menus", "elements: artists, albums and media", writeMenus},
    {"menus-without-ids", "menus in XML, which have no ids", writeFlatMenus},
});

}  // namespace

std::span<const Shape> xmlShapes() {
  return kShapes;
}

}  // namespace bench
