#include "inventory/decimal_number.h"

#include <limits>

namespace Orvane {

namespace {

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

std::int32_t parseDecimal(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && isSpace(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;

  const auto isDigit = [&] { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
  const auto digit = [&] { return static_cast<std::uint64_t>(text[at] - '0'); };
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  constexpr std::uint64_t kSafe = kMax / 100;  // two more digits can't overflow
  const std::uint64_t limit = negative ? kMax + 1 : kMax;
  std::uint64_t magnitude = 0;
  for (; magnitude < kSafe && isDigit(); ++at) magnitude = magnitude * 10 + digit();
  for (; isDigit(); ++at) {
    magnitude = magnitude > (limit - digit()) / 10 ? limit : magnitude * 10 + digit();
  }
  return static_cast<std::int32_t>(
      static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude));
}

}  // namespace Orvane
