#include "inventory/split_fields.h"

#include "inventory/byte_scan.h"

namespace Orvane {

void splitFields(std::string_view line, std::vector<std::string_view>& fields,
                 std::string_view separators, std::size_t limit) {
  std::size_t left = limit;
  std::size_t begin = 0;
  const auto endField = [&](std::size_t end) {
    if (left > 0 && end > begin) {
      fields.push_back(line.substr(begin, end - begin));
      --left;
    }
    begin = end + 1;
    return left > 0;
  };
  if (separators.size() == 1) {
    forEachOccurrence(line, separators.front(), endField);
  } else {
    std::size_t end = line.find_first_of(separators);
    while (end != std::string_view::npos && endField(end)) {
      end = line.find_first_of(separators, begin);
    }
  }
  endField(line.size());
}

}  // namespace Orvane
