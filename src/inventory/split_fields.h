#pragma once

#include <cstddef>
#include <limits>
#include <string_view>
#include <vector>

namespace Orvane {

// Appends to `fields` the runs of characters of `line` that are no separators, at most `limit` of
// them; the views are into `line`. Several separators in a row count as one and those at either end
// for nothing, so that no field is ever empty: in a tracks file, an empty field is no field, and
// the later ones move one place to the left. That is deliberate.
void splitFields(std::string_view line, std::vector<std::string_view>& fields,
                 std::string_view separators,
                 std::size_t limit = std::numeric_limits<std::size_t>::max());

}  // namespace Orvane
