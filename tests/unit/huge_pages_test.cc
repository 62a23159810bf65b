#include "tree/huge_pages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
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
