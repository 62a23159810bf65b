#include "tree/name_ranks.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace Orvane::test {
namespace {

// Names of up to `longest` bytes of a few, behind one of a few common beginnings.
std::vector<std::string> randomNames(std::mt19937& random, std::size_t count, std::size_t longest) {
  const std::string letters("ab\0\x7F\x80\xFF", 6);
  const std::string beginning(random() % 3 * 8, 'a');
  std::vector<std::string> names(count);
  for (std::string& name : names) {
    if (random() % 2 == 0) name = beginning;
    for (std::size_t left = random() % (longest + 1); left-- > 0;) {
      name += letters[random() % letters.size()];
    }
  }
  return names;
}

TEST(NameRanks, CompareAsTheNamesDo) {
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<std::string> names = randomNames(random, 1 + random() % 60, random() % 20);
    NameRanks ranks;
    for (std::size_t i = 0; i < names.size(); ++i) {
      ranks.add(static_cast<std::uint32_t>(i + 1), names[i]);
    }
    ranks.rank();
    for (std::uint32_t a = 0; a < names.size(); ++a) {
      for (std::uint32_t b = 0; b < names.size(); ++b) {
        ASSERT_EQ(ranks[a + 1] < ranks[b + 1], names[a] < names[b]) << a << " " << b;
      }
    }
  }
}

TEST(NameRanks, NumbersMayComeInAnyOrderAndBeFarApart) {
  for (const bool reserved : {false, true}) {
    NameRanks ranks;
    if (reserved) ranks.reserve(3, 70'000);
    ranks.add(70'000, "m");
    ranks.add(5, "a");
    ranks.add(300, "z");
    ranks.rank();
    EXPECT_LT(ranks[5], ranks[70'000]);
    EXPECT_LT(ranks[70'000], ranks[300]);
  }
}

TEST(NameRanks, ZeroBytesAtTheEndTellNamesApart) {
  const std::string one("12345678\0", 9);
  const std::string two("12345678\0\0", 10);
  NameRanks ranks;
  ranks.add(1, two);
  ranks.add(2, "12345678");
  ranks.add(3, one);
  ranks.rank();
  EXPECT_LT(ranks[2], ranks[3]);
  EXPECT_LT(ranks[3], ranks[1]);
}

TEST(NameRanks, NameMayEndLongBeforeItDiffers) {
  const std::string other("a\0\0\0\0\0\0\0\0\0b", 11);
  NameRanks ranks;
  ranks.add(1, other);
  ranks.add(2, "a");
  ranks.rank();
  EXPECT_LT(ranks[2], ranks[1]);
}

}  // namespace
}  // namespace Orvane::test
