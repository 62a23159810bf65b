#include "tree/huge_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <vector>

namespace Orvane::test {
namespace {

TEST(HugePages, GivesMemoryOfEverySize) {
  for (const std::size_t size :
       {std::size_t{1}, (std::size_t{1} << 15) - 1, std::size_t{1} << 15, kHugePageSize - 1,
        kHugePageSize, kHugePageSize + 1, 3 * kHugePageSize}) {
    auto* const bytes = static_cast<std::uint8_t*>(allocateLarge(size));
    bytes[0] = 1;
    bytes[size - 1] = 2;
    EXPECT_EQ(bytes[size - 1], 2) << size;
    if (size >= kHugePageSize) {
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % kHugePageSize, 0U) << size;
    }
    freeLarge(bytes, size);
  }
}

// Pages are told by what is on them: nobody clears what was freed.
TEST(HugePages, UsesThePagesOfWhatWasFreedForOthersOfAnySize) {
  // Takes what other tests have freed.
  constexpr std::size_t kMuch = std::size_t{1} << 30;
  void* const others = allocateLarge(kMuch);

  constexpr std::size_t kSize = 2 * kHugePageSize;
  constexpr char kMark = 'm';
  void* const one = allocateLarge(kSize);
  void* const other = allocateLarge(kSize);
  std::memset(one, kMark, kSize);
  std::memset(other, kMark, kSize);
  freeLarge(one, kSize);
  freeLarge(other, kSize);
  auto* const both = static_cast<char*>(allocateLarge(3 * kHugePageSize));
  auto* const rest = static_cast<char*>(allocateLarge(3 * kHugePageSize));
  EXPECT_EQ(std::count(both, both + 3 * kHugePageSize, kMark), 3 * kHugePageSize);
  EXPECT_EQ(std::count(rest, rest + 3 * kHugePageSize, kMark), kHugePageSize);
  std::memset(both, 0, 3 * kHugePageSize);
  std::memset(rest, 0, 3 * kHugePageSize);
  freeLarge(both, 3 * kHugePageSize);
  freeLarge(rest, 3 * kHugePageSize);
  freeLarge(others, kMuch);
}

TEST(HugePages, KeepsNoMoreThanItCan) {
  std::vector<void*> pieces(80);
  for (int round = 0; round < 2; ++round) {
    for (void*& piece : pieces) {
      piece = allocateLarge(kHugePageSize);
      std::memset(piece, round, 1);
    }
    for (void* const piece : pieces) freeLarge(piece, kHugePageSize);
  }
}

TEST(HugePages, RefusesWhatNoMachineHas) {
  for (const std::size_t size : {SIZE_MAX, SIZE_MAX / 2, std::size_t{1} << 62}) {
    EXPECT_THROW(allocateLarge(size), std::bad_alloc) << size;
  }
  EXPECT_THROW(LargeAllocator<std::uint64_t>().allocate(SIZE_MAX / 8 + 1),
               std::bad_array_new_length);
}

TEST(HugePages, ContainersMayTakeOverEachOthersMemory) {
  std::vector<int, LargeAllocator<int>> one(100'000, 7);
  const int* const memory = one.data();
  std::vector<int, LargeAllocator<int>> other;
  other = std::move(one);
  EXPECT_EQ(other.data(), memory);
  EXPECT_TRUE(LargeAllocator<int>() == LargeAllocator<int>());
}

}  // namespace
}  // namespace Orvane::test
