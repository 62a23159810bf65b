#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>
#include <vector>

#include "tree/huge_pages.h"

namespace Orvane::test {
namespace {

constexpr std::size_t kSize = 2 * kHugePageSize;

// Pages are made by a thread that nobody joins.
void waitForOtherThreads() {
  const auto threads = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
  };
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (threads() > 1 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
}

// Whether any page of `memory` is there.
bool hasPages(void* memory) {
  std::vector<unsigned char> pages(kSize / 4096);
  EXPECT_EQ(::mincore(memory, kSize, pages.data()), 0);
  return std::any_of(pages.begin(), pages.end(), [](unsigned char page) { return page & 1; });
}

// Somebody else may have it by the time that the thread runs, and need not have it for writing.
TEST(PagesAhead, AreNotMadeWhereNobodyMayWrite) {
  void* const memory =
      ::mmap(nullptr, kSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  makePagesAhead(memory, kSize);
  waitForOtherThreads();
  EXPECT_FALSE(hasPages(memory));
  ::munmap(memory, kSize);
}

}  // namespace
}  // namespace Orvane::test
