#include "tree/mapping_pool.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <new>
#include <vector>

#include "tree/huge_pages.h"

namespace Orvane::test {
namespace {

struct Piece {
  std::byte* memory;
  std::size_t size;
};

// Gives all back in the end, as those who take have to.
class MappingPools : public ::testing::Test {
 protected:
  ~MappingPools() override {
    for (const Piece& piece : pieces_) unmapMemory(piece.memory, piece.size);
  }

  std::byte* take(std::size_t pages) {
    const std::size_t size = pages * kHugePageSize;
    pieces_.push_back({pool_.take(size), size});
    return pieces_.back().memory;
  }

  MappingPool pool_;
  std::vector<Piece> pieces_;
};

bool isMapped(const std::byte* memory) {
  std::array<unsigned char, kHugePageSize / 4096> pages;
  return ::mincore(const_cast<std::byte*>(memory), kHugePageSize, pages.data()) == 0;
}

TEST_F(MappingPools, GiveMemoryOfItsOwnToEach) {
  constexpr std::array<std::size_t, 12> kPages = {1, 4, 1, 3, 7, 1, 20, 2, 1, 1, 30, 2};
  for (const std::size_t pages : kPages) take(pages);
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    const auto& [memory, size] = pieces_[i];
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % kHugePageSize, 0U);
    EXPECT_EQ(memory[0], std::byte{0});
    EXPECT_EQ(memory[size - 1], std::byte{0});
    memory[0] = memory[size - 1] = static_cast<std::byte>(i + 1);
  }
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    const auto& [memory, size] = pieces_[i];
    EXPECT_EQ(memory[0], static_cast<std::byte>(i + 1));
    EXPECT_EQ(memory[size - 1], static_cast<std::byte>(i + 1));
  }
  std::sort(pieces_.begin(), pieces_.end(),
            [](const Piece& a, const Piece& b) { return a.memory < b.memory; });
  for (std::size_t i = 1; i < pieces_.size(); ++i) {
    EXPECT_LE(pieces_[i - 1].memory + pieces_[i - 1].size, pieces_[i].memory);
  }
}

TEST_F(MappingPools, MapForSeveral) {
  std::byte* const first = take(1);  // of 8 pages
  for (std::size_t i = 1; i < 8; ++i) EXPECT_EQ(take(1), first + i * kHugePageSize);
}

TEST_F(MappingPools, MapMoreWhenThereIsMuch) {
  take(100);
  std::byte* const first = take(9);  // of 25
  EXPECT_EQ(take(16), first + 9 * kHugePageSize);
}

TEST_F(MappingPools, GiveBackTheRestOfAMappingWhenItIsTooSmall) {
  const std::byte* const rest = take(4) + 4 * kHugePageSize;  // of 8
  take(8);
  EXPECT_TRUE(isMapped(rest)) << "what is as large as a mapping gets one to itself";
  const std::byte* const next = take(5) + 5 * kHugePageSize;  // of 8
  EXPECT_FALSE(isMapped(rest));
  EXPECT_EQ(take(3), next);
}

TEST_F(MappingPools, ThrowWhereThereIsNoMemory) {
  take(20);
  constexpr std::size_t kAll = std::numeric_limits<std::ptrdiff_t>::max();
  EXPECT_THROW(pool_.take(kAll / kHugePageSize * kHugePageSize), std::bad_alloc);
  EXPECT_TRUE(isMapped(take(1)));
}

// In a process of its own, whose limit ends with it.
TEST(MappingPool, MapsWhatIsAskedForWhereThereIsNoMoreMemory) {
  const auto takeUnderLimit = [](std::size_t limit, std::size_t pagesBefore) {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t bytes = pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) + limit;
    const rlimit addresses = {bytes, bytes};
    MappingPool pool;
    if (pagesBefore > 0) pool.take(pagesBefore * kHugePageSize);
    if (::setrlimit(RLIMIT_AS, &addresses) != 0) std::_Exit(2);
    try {
      pool.take(3 * kHugePageSize)[0] = std::byte{1};
    } catch (const std::bad_alloc&) {
      std::_Exit(1);
    }
    std::_Exit(0);
  };
  EXPECT_EXIT(takeUnderLimit(5 * kHugePageSize, 0), ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(takeUnderLimit(3 * kHugePageSize, 0), ::testing::ExitedWithCode(1), "");
  // Too little, but for the rest of a mapping of 8 pages, which is given back then.
  EXPECT_EXIT(takeUnderLimit(11 * kHugePageSize, 6), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace Orvane::test
