#include "inventory/byte_scan.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "seeded_random.h"

namespace Orvane::test {
namespace {

// The first `most` positions, which have to be at least one.
std::vector<std::size_t> scanned(std::string_view text, char wanted, std::size_t most) {
  std::vector<std::size_t> positions;
  forEachOccurrence(text, wanted, [&](std::size_t position) {
    positions.push_back(position);
    return positions.size() < most;
  });
  return positions;
}

std::vector<std::size_t> found(std::string_view text, char wanted, std::size_t most) {
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < text.size() && positions.size() < most; ++i) {
    if (text[i] == wanted) positions.push_back(i);
  }
  return positions;
}

TEST(ByteScan, GivesThePositionsUpToWhereItIsToldToStop) {
  std::mt19937 random = seededRandom(32);
  for (int i = 0; i < 3000; ++i) {
    const char wanted = "|\0\x7F\x80\xFF"[random() % 5];
    std::string text(random() % 200, '\0');
    for (char& c : text) c = random() % 3 == 0 ? wanted : static_cast<char>(random());
    for (const std::size_t most : {1U, 2U, 5U, 300U}) {
      ASSERT_EQ(scanned(text, wanted, most), found(text, wanted, most))
          << ::testing::PrintToString(text);
    }
  }
}

}  // namespace
}  // namespace Orvane::test
