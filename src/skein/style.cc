#include "skein/style.h"

#include <unistd.h>

#include <array>
#include <cstdlib>

namespace Orvane {

Style Style::forOutput(ColorChoice choice, int fd) {
  if (choice != ColorChoice::kAuto) return Style(choice == ColorChoice::kAlways);
  const char* noColor = std::getenv("NO_COLOR");
  const char* term = std::getenv("TERM");
  const bool refused = noColor != nullptr && *noColor != '\0';
  const bool dumb = term == nullptr || std::string_view(term) == "dumb";
  return Style(!refused && !dumb && ::isatty(fd) == 1);
}

std::string_view Style::begin(Ink ink) const {
  constexpr std::array<std::string_view, 8> kSequences = {
      "", "\033[1;31m", "\033[1;35m", "\033[2m", "\033[1m", "\033[32m", "\033[31m", "\033[33m"};
  return colored_ ? kSequences[static_cast<std::size_t>(ink)] : std::string_view{};
}

}  // namespace Orvane
