#include "tree/huge_pages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "allocation_probe.h"

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

// Pages are told by what is on them: nobody clears what was freed. Pages that others have freed may
// come after these; the mark is one that they don't have.
TEST(HugePages, UsesThePagesOfWhatWasFreedForOthersOfAnySize) {
  constexpr std::size_t kSize = 2 * kHugePageSize;
  constexpr std::size_t kWords = kHugePageSize / sizeof(std::uint64_t);
  constexpr std::uint64_t kMark = 0x9C3F51E2A7D4B086;
  auto* const one = static_cast<std::uint64_t*>(allocateLarge(kSize));
  auto* const other = static_cast<std::uint64_t*>(allocateLarge(kSize));
  std::fill_n(one, 2 * kWords, kMark);
  std::fill_n(other, 2 * kWords, kMark);
  freeLarge(one, kSize);
  freeLarge(other, kSize);
  auto* const both = static_cast<std::uint64_t*>(allocateLarge(3 * kHugePageSize));
  auto* const rest = static_cast<std::uint64_t*>(allocateLarge(3 * kHugePageSize));
  EXPECT_EQ(std::count(both, both + 3 * kWords, kMark), 3 * kWords);
  EXPECT_EQ(std::count(rest, rest + 3 * kWords, kMark), kWords);
  std::fill_n(both, 3 * kWords, 0);
  std::fill_n(rest, 3 * kWords, 0);
  freeLarge(both, 3 * kHugePageSize);
  freeLarge(rest, 3 * kHugePageSize);
}

bool isMapped(void* memory) {
  std::array<unsigned char, kHugePageSize / 4096> pages;
  return ::mincore(memory, kHugePageSize, pages.data()) == 0;
}

TEST(HugePages, GivesBackWhatItKeeps) {
  std::array<void*, 3> pieces;
  for (void*& piece : pieces) piece = allocateLarge(kHugePageSize);
  freeLarge(pieces[0], kHugePageSize);
  freeLarge(pieces[1], kHugePageSize);
  giveBackSpareMemory();
  EXPECT_FALSE(isMapped(pieces[0]));
  EXPECT_FALSE(isMapped(pieces[1]));
  EXPECT_TRUE(isMapped(pieces[2]));
  freeLarge(pieces[2], kHugePageSize);
}

// What is kept for others is in as many pieces as SpareMemory takes.
TEST(HugePages, ReturnsToTheSystemWhatIsTooMuchToKeep) {
  std::vector<void*> pieces(80);
  for (void*& piece : pieces) piece = allocateLarge(kHugePageSize);
  for (void* const piece : pieces) freeLarge(piece, kHugePageSize);
  const auto kept = std::count_if(pieces.begin(), pieces.end(), isMapped);
  EXPECT_GT(kept, 0);
  EXPECT_LE(kept, 64);
}

TEST(HugePages, LeavesSmallPiecesToTheHeap) {
  const std::ptrdiff_t before = liveAllocations();
  void* const small = allocateLarge(kHugePageSize - 1);
  EXPECT_EQ(liveAllocations(), before + 1);
  void* const large = allocateLarge(kHugePageSize);
  EXPECT_EQ(liveAllocations(), before + 1);
  freeLarge(small, kHugePageSize - 1);
  freeLarge(large, kHugePageSize);
  EXPECT_EQ(liveAllocations(), before);
}

template <typename T>
void expectRefusal() {
  EXPECT_THROW(LargeAllocator<T>().allocate(SIZE_MAX / sizeof(T) + 1), std::bad_array_new_length);
}

TEST(HugePages, RefusesWhatNoMachineHas) {
  for (const std::size_t size : {SIZE_MAX, SIZE_MAX / 2, std::size_t{1} << 62}) {
    EXPECT_THROW(allocateLarge(size), std::bad_alloc) << size;
  }
  expectRefusal<std::uint32_t>();
  expectRefusal<std::uint64_t>();
  expectRefusal<std::array<std::uint64_t, 2>>();
  expectRefusal<std::array<std::uint64_t, 3>>();
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
