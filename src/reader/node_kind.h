#pragma once

#include <cstdint>
#include <string_view>

namespace Orvane {

// What a person calls a record: "media" for a leaf, and for a menu by its recType "album",
// "artist", "genre", "playlist", "one-star", "two-stars", "three-stars", or "menu" for a plain menu
// and any other code.
std::string_view kindOf(bool leaf, std::uint8_t recType);

// The recType that `kind` goes without saying for: what a printer leaves out.
bool isUsualRecType(bool leaf, std::uint8_t recType);

}  // namespace Orvane
