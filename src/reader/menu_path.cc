#include "reader/menu_path.h"

#include <array>

#include "reader/text_escape.h"
#include "reader/tree_walk.h"

namespace Orvane {

std::string MenuPath::of(std::uint32_t record) const {
  std::array<std::uint32_t, kMaxNames> names{};
  std::size_t count = 0;
  while (record != 0 && record < parents_.size() && parents_[record] < TreeWalk::kStart &&
         count < names.size()) {
    names[count++] = record;
    record = parents_[record];
  }
  std::string path;
  if (record != 0) {
    path = count == names.size() ? "/..." : "?";
  } else if (count == 0) {
    return "/";
  }
  while (count-- > 0) {
    path += '/';
    const ItemView item = view_.itemOf(names[count]);
    if (item) {
      appendEscaped(path, item.name(), "/");
    } else {
      path += '?';
    }
  }
  return path;
}

}  // namespace Orvane
