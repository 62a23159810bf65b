#include "tree/spare_memory.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

namespace Orvane::test {
namespace {

class SpareMemoryTest : public ::testing::Test {
 protected:
  std::array<std::byte, 100> memory_{};
  SpareMemory spare_;
};

TEST_F(SpareMemoryTest, HasNothingAtFirst) {
  EXPECT_EQ(spare_.take(1), nullptr);
}

TEST_F(SpareMemoryTest, GivesEachPartOnce) {
  ASSERT_TRUE(spare_.keep(&memory_[0], 30));
  EXPECT_EQ(spare_.take(31), nullptr);
  EXPECT_EQ(spare_.take(10), &memory_[0]);
  EXPECT_EQ(spare_.take(21), nullptr);
  EXPECT_EQ(spare_.take(20), &memory_[10]);
  EXPECT_EQ(spare_.take(1), nullptr);
}

TEST_F(SpareMemoryTest, TakesTheSmallestPieceThatWillDo) {
  ASSERT_TRUE(spare_.keep(&memory_[0], 40));
  ASSERT_TRUE(spare_.keep(&memory_[40], 10));
  ASSERT_TRUE(spare_.keep(&memory_[50], 20));
  EXPECT_EQ(spare_.take(15), &memory_[50]);
  EXPECT_EQ(spare_.take(10), &memory_[40]);
  EXPECT_EQ(spare_.take(5), &memory_[65]);
  EXPECT_EQ(spare_.take(10), &memory_[0]);
  EXPECT_EQ(spare_.take(30), &memory_[10]);
}

TEST_F(SpareMemoryTest, RefusesTooManyPieces) {
  std::size_t kept = 0;
  while (kept < memory_.size() && spare_.keep(&memory_[kept], 1)) ++kept;
  EXPECT_EQ(kept, 64U);
  for (std::size_t i = 0; i < kept; ++i) EXPECT_NE(spare_.take(1), nullptr);
  EXPECT_EQ(spare_.take(1), nullptr);
}

}  // namespace
}  // namespace Orvane::test
