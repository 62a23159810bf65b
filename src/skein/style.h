#pragma once

#include <cstdint>
#include <string_view>

#include "skein/common_options.h"

namespace Orvane {

enum class Ink : std::uint8_t { kPlain, kError, kWarning, kDim, kBold, kAdded, kRemoved, kChanged };

// The escape sequences around coloured text; empty strings where there is to be no colour.
class Style {
 public:
  explicit Style(bool colored = false) : colored_(colored) {}

  // By what the user asked for; for kAuto the output must be a terminal that is not "dumb", and
  // NO_COLOR must be empty or unset.
  static Style forOutput(ColorChoice choice, int fd);

  std::string_view begin(Ink ink) const;
  std::string_view end() const { return colored_ ? "\033[0m" : ""; }

 private:
  bool colored_;
};

}  // namespace Orvane
