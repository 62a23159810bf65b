#include "tree/made_ahead.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <semaphore>
#include <stdexcept>
#include <thread>
#include <vector>

#include "allocation_probe.h"

namespace Orvane::test {
namespace {

// Makes an item that is twice what was taken.
void twice(int& item) {
  item *= 2;
}

TEST(MadeAhead, UsesAllInOrder) {
  for (const int count : {0, 1, 2, 3, 1000}) {
    int next = 0;
    std::vector<int> used;
    forEachMadeAhead<int>(
        [&](int& item) {
          item = next++;
          return item < count;
        },
        twice, [&](int item) { used.push_back(item); });
    ASSERT_EQ(used.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) ASSERT_EQ(used[static_cast<std::size_t>(i)], 2 * i);
    EXPECT_EQ(next, count + 1) << "nothing is taken after the end";
  }
}

// The use of the first item waits until the second one is made.
TEST(MadeAhead, MakesTheNextWhileOneIsUsed) {
  std::binary_semaphore secondIsMade(0);
  int taken = 0;
  int used = 0;
  forEachMadeAhead<int>(
      [&](int& item) {
        item = ++taken;
        return item <= 2;
      },
      [&](const int& item) {
        if (item == 2) secondIsMade.release();
      },
      [&](int item) {
        if (item == 1) secondIsMade.acquire();
        ++used;
      });
  EXPECT_EQ(used, 2);
}

// Two items are made at the same time, each waiting for the other to be begun.
TEST(MadeAhead, MakesWhileTheOtherThreadDoes) {
  std::array<std::binary_semaphore, 2> begun = {std::binary_semaphore(0), std::binary_semaphore(0)};
  std::array<std::thread::id, 2> makers;
  std::size_t taken = 0;
  std::vector<std::size_t> used;
  forEachMadeAhead<std::size_t>(
      [&](std::size_t& item) {
        item = taken++;
        return item < 2;
      },
      [&](const std::size_t& item) {
        makers.at(item) = std::this_thread::get_id();
        begun.at(item).release();
        begun.at(1 - item).acquire();
      },
      [&](std::size_t item) { used.push_back(item); });
  EXPECT_EQ(used, (std::vector<std::size_t>{0, 1}));
  EXPECT_NE(makers[0], makers[1]);
  EXPECT_TRUE(makers[0] == std::this_thread::get_id() || makers[1] == std::this_thread::get_id());
}

TEST(MadeAhead, DoesWithoutAThreadWhenMemoryRunsOut) {
  int taken = 0;
  int sum = 0;
  {
    const LimitedAllocations none(0);
    forEachMadeAhead<int>(
        [&](int& item) {
          item = ++taken;
          return item <= 10;
        },
        twice, [&](int item) { sum += item; });
  }
  EXPECT_EQ(taken, 11);
  EXPECT_EQ(sum, 110);
}

TEST(MadeAhead, ItemsAreMadeAnewInTheSamePlaces) {
  int taken = 0;
  std::vector<std::size_t> sizes;
  forEachMadeAhead<std::vector<int>, 3>(
      [&](std::vector<int>&) { return ++taken <= 40; },
      [](std::vector<int>& item) { item.push_back(0); },
      [&](const std::vector<int>& item) { sizes.push_back(item.size()); });
  ASSERT_EQ(sizes.size(), 40U);
  for (std::size_t i = 0; i < sizes.size(); ++i) ASSERT_EQ(sizes[i], 1 + i / 3);
}

TEST(MadeAhead, WhatTakingThrowsComesAfterTheItemsBefore) {
  for (const int good : {0, 1, 2, 7, 40}) {
    int taken = 0;
    int used = 0;
    const auto take = [&](int&) {
      if (taken++ == good) throw std::runtime_error("on purpose");
      return true;
    };
    EXPECT_THROW(forEachMadeAhead<int>(take, twice, [&](int) { ++used; }), std::runtime_error);
    EXPECT_EQ(used, good);
    EXPECT_EQ(taken, good + 1);
  }
}

TEST(MadeAhead, WhatMakingThrowsComesAfterTheItemsBefore) {
  for (const int good : {0, 1, 2, 7, 40}) {
    int taken = 0;
    int used = 0;
    const auto take = [&](int& item) {
      item = taken++;
      return true;
    };
    const auto make = [&](const int& item) {
      if (item == good) throw std::runtime_error("on purpose");
    };
    EXPECT_THROW(forEachMadeAhead<int>(take, make, [&](int) { ++used; }), std::runtime_error);
    EXPECT_EQ(used, good);
    EXPECT_LE(taken, good + static_cast<int>(kManyAhead));
  }
}

TEST(MadeAhead, WhatUsingThrowsEndsTheMaking) {
  for (const int good : {0, 1, 2, 7}) {
    int taken = 0;
    int used = 0;
    const auto take = [&](int&) {
      ++taken;
      return true;
    };
    const auto use = [&](int) {
      if (used++ == good) throw std::runtime_error("on purpose");
    };
    EXPECT_THROW(forEachMadeAhead<int>(take, twice, use), std::runtime_error);
    EXPECT_LE(taken, good + static_cast<int>(kManyAhead));
  }
}

}  // namespace
}  // namespace Orvane::test
