#include "tree/spare_memory.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <utility>

namespace Orvane::test {
namespace {

class SpareMemoryTest : public ::testing::Test {
 protected:
  using Place = std::pair<const std::byte*, std::size_t>;

  Place take(std::size_t size) {
    const SpareMemory::Piece piece = spare_.take(size);
    return {piece.memory, piece.size};
  }

  std::array<std::byte, 100> memory_{};
  SpareMemory spare_;
};

TEST_F(SpareMemoryTest, HasNothingAtFirst) {
  EXPECT_EQ(take(1), Place(nullptr, 0));
}

TEST_F(SpareMemoryTest, GivesEachPartOnce) {
  ASSERT_TRUE(spare_.keep({&memory_[0], 30}));
  EXPECT_EQ(take(10), Place(&memory_[0], 10));
  EXPECT_EQ(take(30), Place(&memory_[10], 20));
  EXPECT_EQ(take(1), Place(nullptr, 0));
}

TEST_F(SpareMemoryTest, GivesWhatWasKeptLastFirst) {
  ASSERT_TRUE(spare_.keep({&memory_[0], 40}));
  ASSERT_TRUE(spare_.keep({&memory_[40], 10}));
  EXPECT_EQ(take(50), Place(&memory_[40], 10));
  EXPECT_EQ(take(50), Place(&memory_[0], 40));
  EXPECT_EQ(take(50), Place(nullptr, 0));
}

TEST_F(SpareMemoryTest, RefusesTooManyPieces) {
  std::size_t kept = 0;
  while (kept < memory_.size() && spare_.keep({&memory_[kept], 1})) ++kept;
  EXPECT_EQ(kept, 64U);
  for (; kept > 0; --kept) EXPECT_EQ(take(2), Place(&memory_[kept - 1], 1));
  EXPECT_EQ(take(2), Place(nullptr, 0));
}

}  // namespace
}  // namespace Orvane::test
