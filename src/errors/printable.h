#pragma once

#include <string>
#include <string_view>

namespace Orvane {

// `text` for showing on a terminal: control characters (also those of Latin-1 and Unicode) and
// bytes that are no UTF-8 appear as \xHH, a backslash as \\, everything else as it is.
std::string printable(std::string_view text);

}  // namespace Orvane
