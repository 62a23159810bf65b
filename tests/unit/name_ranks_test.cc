#include "tree/name_ranks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
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

void rankNames(NameRanks& ranks, const std::vector<std::string>& names) {
  ranks.rank(names.size(), [&](std::size_t number) -> std::string_view { return names[number]; });
}

TEST(NameRanks, CompareAsTheNamesDo) {
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<std::string> names = randomNames(random, 1 + random() % 60, random() % 20);
    NameRanks ranks;
    rankNames(ranks, names);
    for (std::uint32_t a = 0; a < names.size(); ++a) {
      for (std::uint32_t b = 0; b < names.size(); ++b) {
        ASSERT_EQ(ranks[a] < ranks[b], names[a] < names[b]) << a << " " << b;
      }
    }
  }
}

// Also when not all keys are made at a time, be they of one part or of many.
TEST(NameRanks, TellHowManyNamesComeBefore) {
  std::mt19937 random(1);
  for (const std::size_t letters : {1U, 2U, 5U, 100U, 256U}) {
    SCOPED_TRACE(letters);
    std::vector<std::string> names(250'000);
    for (std::string& name : names) {
      name += static_cast<char>(random() % letters);
      name += static_cast<char>(random() % 3);
    }
    NameRanks ranks;
    rankNames(ranks, names);
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    for (std::uint32_t i = 0; i < names.size(); ++i) {
      const auto before = std::lower_bound(sorted.begin(), sorted.end(), names[i]);
      ASSERT_EQ(ranks[i], before - sorted.begin()) << i;
    }
  }
}

TEST(NameRanks, MayBeOfOtherNamesLater) {
  NameRanks ranks;
  rankNames(ranks, {"b", "a"});
  rankNames(ranks, {"a", "b", "c"});
  EXPECT_LT(ranks[0], ranks[1]);
  EXPECT_LT(ranks[1], ranks[2]);
}

TEST(NameRanks, NoNamesHaveNone) {
  NameRanks ranks;
  ranks.rank(0, [](std::size_t /*number*/) -> std::string_view {
    ADD_FAILURE() << "there is no name to be asked for";
    return "";
  });
}

TEST(NameRanks, ZeroBytesAtTheEndTellNamesApart) {
  const std::string one("12345678\0", 9);
  const std::string two("12345678\0\0", 10);
  NameRanks ranks;
  rankNames(ranks, {two, "12345678", one});
  EXPECT_LT(ranks[1], ranks[2]);
  EXPECT_LT(ranks[2], ranks[0]);
}

TEST(NameRanks, NameMayEndLongBeforeItDiffers) {
  const std::string other("a\0\0\0\0\0\0\0\0\0b", 11);
  NameRanks ranks;
  rankNames(ranks, {other, "a"});
  EXPECT_LT(ranks[1], ranks[0]);
}

}  // namespace
}  // namespace Orvane::test
