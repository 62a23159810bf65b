#include "inventory/media_id_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>

namespace Orvane::test {
namespace {

constexpr std::uint32_t kLargestId = 0xFFFFFFFF;

using Plain = std::map<std::uint32_t, std::uint32_t>;

void expectSame(const MediaIdIndex& index, const Plain& plain, std::uint32_t id) {
  const auto expected = plain.find(id);
  ASSERT_EQ(index.hasEntry(id), expected != plain.end()) << id;
  ASSERT_EQ(index.find(id), expected == plain.end() ? 0 : expected->second) << id;
}

// All ids and those next to them.
void expectSame(const MediaIdIndex& index, const Plain& plain) {
  for (const auto& [id, number] : plain) {
    for (const std::uint32_t near : {id - 1, id, id + 1}) {
      index.expect(near);
      ASSERT_NO_FATAL_FAILURE(expectSame(index, plain, near));
    }
  }
}

void enterBoth(MediaIdIndex& index, Plain& plain, std::uint32_t id, std::uint32_t number) {
  std::uint32_t& expected = plain[id];
  if (expected == 0) expected = number;
  ASSERT_EQ(index.enter(id, number), expected) << id;
}

// How far the next id is from the last: always the same, any small step, mostly small but sometimes
// very large, or more and more.
std::uint32_t stepOf(std::uint32_t kind, std::uint32_t count, std::mt19937& random) {
  const auto number = static_cast<std::uint32_t>(random());
  if (kind == 0) return 3;
  if (kind == 1) return 1 + number % 50;
  if (kind == 2) return number % 20 == 0 ? 10'000'000 : 1 + number % 2;
  return 1 + (1U << std::min(count / 8, 26U));
}

TEST(MediaIdIndex, FindsIdsThatCountUp) {
  for (std::uint32_t seed = 0; seed < 40; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    MediaIdIndex index;
    Plain plain;
    std::uint32_t id = seed < 20 ? 0 : 1'000'000;
    const auto firstNumber = static_cast<std::uint32_t>(1 + random() % 100);
    for (std::uint32_t i = 0; i < 200; ++i) {
      ASSERT_NO_FATAL_FAILURE(enterBoth(index, plain, id, firstNumber + i));
      id += stepOf(seed % 4, i, random);
      if (i < 40) {
        ASSERT_NO_FATAL_FAILURE(expectSame(index, plain));
      }
    }
    ASSERT_NO_FATAL_FAILURE(expectSame(index, plain));
    EXPECT_EQ(index.find(0), plain.count(0) == 0 ? 0 : firstNumber);
    EXPECT_EQ(index.find(kLargestId), 0U);
  }
}

// More than are searched together.
TEST(MediaIdIndex, FindsManyIdsThatCountUp) {
  for (std::uint32_t kind = 0; kind < 3; ++kind) {
    SCOPED_TRACE(kind);
    std::mt19937 random(kind);
    MediaIdIndex index;
    Plain plain;
    std::uint32_t id = 10;
    for (std::uint32_t i = 1; i <= 5000; ++i) {
      id += kind < 2 || i % 20 == 0 ? stepOf(kind, i, random) : 2;
      ASSERT_NO_FATAL_FAILURE(enterBoth(index, plain, id, i));
      if (i % 512 < 2) {
        ASSERT_NO_FATAL_FAILURE(expectSame(index, plain));
      }
    }
    ASSERT_NO_FATAL_FAILURE(expectSame(index, plain));
  }
}

TEST(MediaIdIndex, DoesWhatAMapDoes) {
  for (std::uint32_t seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    MediaIdIndex index;
    Plain plain;
    std::uint32_t next = 5;
    std::uint32_t number = 1;
    const std::uint32_t countingUp = 1 + seed % 50;
    for (std::uint32_t step = 0; step < 150; ++step) {
      const auto any = static_cast<std::uint32_t>(random() % (next + 2));
      const auto action = step < countingUp ? 0 : static_cast<std::uint32_t>(random() % 100);
      if (action < 60) {
        next += static_cast<std::uint32_t>(1 + random() % 3);
        ASSERT_NO_FATAL_FAILURE(enterBoth(index, plain, next, number++));
      } else if (action < 80) {
        ASSERT_NO_FATAL_FAILURE(enterBoth(index, plain, any, number++));
      } else if (action < 88) {
        index.erase(any);
        plain.erase(any);
      } else if (action < 96) {
        index.enterEmpty(any);
        plain.try_emplace(any, 0);
      } else if (action < 98) {
        index.expectCount(200);
      } else if (action < 99) {
        ++number;  // a number that no id has
      } else {
        index.clear();
        plain.clear();
      }
      ASSERT_NO_FATAL_FAILURE(expectSame(index, plain, any));
    }
    ASSERT_NO_FATAL_FAILURE(expectSame(index, plain));
  }
}

TEST(MediaIdIndex, HoldsTheSmallestAndTheLargestId) {
  MediaIdIndex index;
  EXPECT_EQ(index.find(0), 0U);
  EXPECT_EQ(index.enter(0, 7), 7U);
  EXPECT_EQ(index.enter(kLargestId, 8), 8U);
  EXPECT_EQ(index.enter(0, 9), 7U);
  EXPECT_EQ(index.find(kLargestId), 8U);
  EXPECT_EQ(index.find(1), 0U);
  EXPECT_EQ(index.find(kLargestId - 1), 0U);
  EXPECT_EQ(index.enter(1, 9), 9U);
  EXPECT_EQ(index.find(0), 7U);
  EXPECT_EQ(index.find(kLargestId), 8U);
}

TEST(MediaIdIndex, AnIdThatIsKnownLeavesTheListAsItIs) {
  MediaIdIndex index;
  EXPECT_EQ(index.enter(10, 1), 1U);
  EXPECT_EQ(index.enter(20, 2), 2U);
  EXPECT_EQ(index.enter(10, 3), 1U);
  EXPECT_EQ(index.enter(20, 3), 2U);
  EXPECT_EQ(index.enter(30, 3), 3U);
  EXPECT_EQ(index.find(30), 3U);
}

TEST(MediaIdIndex, ANumberThatIsNotTheNextOneIsKept) {
  MediaIdIndex index;
  EXPECT_EQ(index.enter(10, 1), 1U);
  EXPECT_EQ(index.enter(20, 5), 5U);
  EXPECT_EQ(index.find(10), 1U);
  EXPECT_EQ(index.find(20), 5U);
}

TEST(MediaIdIndex, AnEmptyEntryTakesTheNumberThatComes) {
  MediaIdIndex index;
  index.enter(10, 1);
  index.enterEmpty(10);
  index.enterEmpty(20);
  EXPECT_EQ(index.find(10), 1U);
  EXPECT_TRUE(index.hasEntry(20));
  EXPECT_EQ(index.find(20), 0U);
  EXPECT_EQ(index.enter(20, 2), 2U);
  EXPECT_EQ(index.find(20), 2U);
}

}  // namespace
}  // namespace Orvane::test
