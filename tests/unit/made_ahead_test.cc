#include "tree/made_ahead.h"

#include <gtest/gtest.h>

#include <semaphore>
#include <stdexcept>
#include <vector>

#include "allocation_probe.h"

namespace Orvane::test {
namespace {

TEST(MadeAhead, UsesAllInOrder) {
  for (const int count : {0, 1, 2, 3, 1000}) {
    int next = 0;
    std::vector<int> used;
    forEachMadeAhead<int>(
        [&](int& item) {
          item = next++;
          return item < count;
        },
        [&](int item) { used.push_back(item); });
    ASSERT_EQ(used.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) ASSERT_EQ(used[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(next, count + 1) << "nothing is made after the end";
  }
}

// The use of the first item waits until the second one is made.
TEST(MadeAhead, MakesTheNextWhileOneIsUsed) {
  std::binary_semaphore secondIsMade(0);
  int made = 0;
  int used = 0;
  forEachMadeAhead<int>(
      [&](int& item) {
        item = ++made;
        if (item == 2) secondIsMade.release();
        return item <= 2;
      },
      [&](int item) {
        if (item == 1) secondIsMade.acquire();
        ++used;
      });
  EXPECT_EQ(used, 2);
}

TEST(MadeAhead, DoesWithoutAThreadWhenMemoryRunsOut) {
  int made = 0;
  int sum = 0;
  {
    const LimitedAllocations none(0);
    forEachMadeAhead<int>(
        [&](int& item) {
          item = ++made;
          return item <= 10;
        },
        [&](int item) { sum += item; });
  }
  EXPECT_EQ(made, 11);
  EXPECT_EQ(sum, 55);
}

TEST(MadeAhead, ItemsAreMadeAnewInTheSamePlaces) {
  int made = 0;
  std::vector<std::size_t> sizes;
  forEachMadeAhead<std::vector<int>, 3>(
      [&](std::vector<int>& item) {
        item.push_back(0);
        return ++made <= 40;
      },
      [&](const std::vector<int>& item) { sizes.push_back(item.size()); });
  ASSERT_EQ(sizes.size(), 40U);
  for (std::size_t i = 0; i < sizes.size(); ++i) ASSERT_EQ(sizes[i], 1 + i / 3);
}

TEST(MadeAhead, WhatMakingThrowsComesAfterTheItemsBefore) {
  for (const int good : {0, 1, 2, 7, 40}) {
    int made = 0;
    int used = 0;
    const auto make = [&](int&) {
      if (made++ == good) throw std::runtime_error("on purpose");
      return true;
    };
    EXPECT_THROW(forEachMadeAhead<int>(make, [&](int) { ++used; }), std::runtime_error);
    EXPECT_EQ(used, good);
    EXPECT_EQ(made, good + 1);
  }
}

TEST(MadeAhead, WhatUsingThrowsEndsTheMaking) {
  for (const int good : {0, 1, 2, 7}) {
    int made = 0;
    int used = 0;
    const auto make = [&](int&) {
      ++made;
      return true;
    };
    const auto use = [&](int) {
      if (used++ == good) throw std::runtime_error("on purpose");
    };
    EXPECT_THROW(forEachMadeAhead<int>(make, use), std::runtime_error);
    EXPECT_LE(made, good + static_cast<int>(kManyAhead));
  }
}

}  // namespace
}  // namespace Orvane::test
