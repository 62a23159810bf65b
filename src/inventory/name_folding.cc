#include "inventory/name_folding.h"

#include <algorithm>

namespace Orvane {

std::string foldName(std::string_view name) {
  std::string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) {
    const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    // Strings compare as unsigned bytes; turning the top bit over makes that the signed order.
    return static_cast<char>(upper ^ '\x80');
  });
  return folded;
}

}  // namespace Orvane
