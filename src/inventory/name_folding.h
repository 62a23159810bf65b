#pragma once

#include <string>
#include <string_view>

namespace Orvane {

// The form of a name in which categories are ordered: comparing two such strings gives the order of
// the names. ASCII letters count as upper case, whatever the locale, and bytes above 127 come
// before all of ASCII, since existing inventories were ordered by comparing signed characters.
std::string foldName(std::string_view name);

}  // namespace Orvane
