#include "tree/keyed_hash.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tree/position_index.h"

namespace Orvane::test {
namespace {

constexpr std::size_t kCount = 4096;

// How many of the hashes meet in the place of a table with as many places where most do.
std::size_t mostInAPlace(const std::function<std::uint64_t(std::uint32_t)>& hash) {
  std::vector<std::size_t> places(kCount);
  for (std::uint32_t i = 0; i < kCount; ++i) ++places[hash(i) % kCount];
  return *std::max_element(places.begin(), places.end());
}

TEST(KeyedHash, SpreadsIdsInRunsAndInSteps) {
  for (const unsigned step : {0U, 1U, 4U, 12U, 20U}) {
    EXPECT_LT(mostInAPlace([=](std::uint32_t i) { return hashOfId(i << step); }), 20U) << step;
  }
}

TEST(KeyedHash, SpreadsIdsOfOneName) {
  for (const unsigned step : {0U, 1U, 4U, 12U, 20U}) {
    EXPECT_LT(
        mostInAPlace([=](std::uint32_t i) { return hashNameAndId("Greatest Hits", i << step); }),
        20U)
        << step;
  }
}

TEST(KeyedHash, SpreadsNamesThatDifferLittle) {
  for (const std::size_t before : {0U, 3U, 8U, 60U}) {
    const std::string beginning(before, 'x');
    EXPECT_LT(mostInAPlace([&](std::uint32_t i) {
                return hashNameAndId(beginning + std::to_string(i) + " and more", 7);
              }),
              20U)
        << before;
  }
}

// Whoever makes a list doesn't know the key that it will meet.
TEST(KeyedHash, HasAnotherKeyInEachProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  std::set<int> hashes;
  const auto note = [&](int status) {
    hashes.insert(status);
    return WIFEXITED(status);
  };
  for (int i = 0; i < 4; ++i)
    EXPECT_EXIT(std::_Exit(static_cast<int>(hashOfId(1) % 256)), note, "");
  EXPECT_GT(hashes.size(), 1U) << "by chance once in 16 million times";
}

TEST(KeyedHash, GoesByBytesAndLength) {
  std::set<std::uint64_t> hashes;
  for (std::size_t size = 0; size < 40; ++size) hashes.insert(hashOfName(std::string(size, '\0')));
  for (std::size_t at = 0; at < 40; ++at) {
    std::string name(40, 'n');
    name[at] = 'm';
    hashes.insert(hashOfName(name));
  }
  EXPECT_EQ(hashes.size(), 80U);
  EXPECT_EQ(hashOfName("same"), hashOfName(std::string("same")));
}

}  // namespace
}  // namespace Orvane::test
