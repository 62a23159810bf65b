#include "output/recurring_ids.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>

#include "seeded_random.h"
#include "tree/parallel.h"

namespace Orvane::test {
namespace {

TEST(RecurringIds, TellsIdsInARunApart) {
  constexpr std::uint32_t kFirst = 0xFFFFFF00;
  constexpr std::uint32_t kCount = 200;
  RecurringIds ids(kCount);
  for (std::uint32_t i = 0; i < kCount; ++i) ids.meet(kFirst + i);
  for (std::uint32_t i = 0; i < kCount; i += 3) ids.meet(kFirst + i);
  for (std::uint32_t i = 0; i < kCount; ++i) {
    EXPECT_EQ(ids.mayRecur(kFirst + i), i % 3 == 0) << i;
  }
  EXPECT_FALSE(ids.mayRecur(kFirst + kCount)) << "never met";
}

TEST(RecurringIds, FewOfManyAreTakenForOthers) {
  constexpr std::size_t kCount = 10'000;
  std::mt19937 random = seededRandom(1);
  RecurringIds ids(kCount);
  std::map<std::uint32_t, int> meetings;
  for (std::size_t i = 0; i < kCount; ++i) {
    const auto id = static_cast<std::uint32_t>(random());
    for (int n = i % 10 == 0 ? 2 : 1; n > 0; --n) {
      ids.meet(id);
      ++meetings[id];
    }
  }
  std::size_t mistaken = 0;
  for (const auto& [id, count] : meetings) {
    if (count > 1) {
      EXPECT_TRUE(ids.mayRecur(id)) << id;
    } else if (ids.mayRecur(id)) {
      ++mistaken;
    }
  }
  EXPECT_LT(mistaken, kCount / 5);
}

TEST(RecurringIds, ThreadsMeetTheSameIds) {
  constexpr std::uint32_t kCount = 100'000;
  RecurringIds ids(kCount);
  forEachInParallel(std::size_t{2} * kCount, 4, [&](std::size_t i, std::size_t /*worker*/) {
    ids.meet(static_cast<std::uint32_t>(i / 2));
  });
  std::uint32_t recurring = 0;
  for (std::uint32_t id = 0; id < kCount; ++id) recurring += ids.mayRecur(id) ? 1U : 0U;
  EXPECT_EQ(recurring, kCount);
}

TEST(RecurringIds, RecurOnceTheyAreMetOften) {
  RecurringIds ids(100);
  ids.meet(7);
  ids.meetOften(7);
  ids.meetOften(8);
  EXPECT_TRUE(ids.mayRecur(7));
  EXPECT_TRUE(ids.mayRecur(8));
  ids.meet(9);
  EXPECT_FALSE(ids.mayRecur(9));
  EXPECT_FALSE(ids.mayRecur(6));
}

TEST(RecurringIds, HasRoomForMoreThanExpected) {
  RecurringIds ids(0);
  EXPECT_FALSE(ids.mayRecur(5));
  ids.meet(5);
  EXPECT_FALSE(ids.mayRecur(5));
  ids.meet(5 + 32);
  EXPECT_TRUE(ids.mayRecur(5)) << "they share their place";
  EXPECT_FALSE(ids.mayRecur(6));
}

}  // namespace
}  // namespace Orvane::test
