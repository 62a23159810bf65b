#include "tree/pages_ahead.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <thread>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/parallel.h"

namespace Orvane::test {
namespace {

constexpr std::size_t kSize = 2 * kHugePageSize;

std::size_t pageSize() {
  return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

// How many pages there are.
std::size_t pagesIn(void* memory, std::size_t size) {
  std::vector<unsigned char> pages(size / pageSize());
  EXPECT_EQ(::mincore(memory, size, pages.data()), 0);
  return static_cast<std::size_t>(
      std::count_if(pages.begin(), pages.end(), [](unsigned char page) { return page & 1; }));
}

// Memory that has no pages yet.
class Pages {
 public:
  explicit Pages(int protection)
      : memory_(::mmap(nullptr, kSize, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1,
                       0)) {
    EXPECT_NE(memory_, MAP_FAILED);
  }
  Pages(const Pages&) = delete;
  Pages& operator=(const Pages&) = delete;
  ~Pages() { ::munmap(memory_, kSize); }

  void* memory() const { return memory_; }

  std::size_t count() const { return pagesIn(memory_, kSize); }

 private:
  void* memory_;
};

// How many pages are made ahead: none on a single processor, or where the system doesn't do that.
std::size_t allPages() {
  const Pages tried(PROT_READ | PROT_WRITE);
  const bool canMake = ::madvise(tried.memory(), kSize, MADV_POPULATE_WRITE) == 0;
  return canMake && usableProcessors() >= 2 ? kSize / pageSize() : 0;
}

// They are made in the order in which they are asked for.
void waitForPages() {
  const Pages last(PROT_READ | PROT_WRITE);
  const std::size_t all = allPages();
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  do {
    makePagesAhead(last.memory(), kSize);
    std::this_thread::yield();
  } while (last.count() != all && std::chrono::steady_clock::now() < end);
  EXPECT_EQ(last.count(), all);
}

TEST(PagesAhead, AreAllMade) {
  const Pages pages(PROT_READ | PROT_WRITE);
  makePagesAhead(pages.memory(), kSize);
  waitForPages();
  EXPECT_EQ(pages.count(), allPages());
}

// Somebody else may have it by the time that the thread gets there, and need not have it for
// writing.
TEST(PagesAhead, AreNotMadeWhereNobodyMayWrite) {
  const Pages pages(PROT_NONE);
  makePagesAhead(pages.memory(), kSize);
  waitForPages();
  EXPECT_EQ(pages.count(), 0);
}

TEST(PagesAhead, AreNotMadeOfLessThanALargeOne) {
  const Pages pages(PROT_READ | PROT_WRITE);
  makePagesAhead(pages.memory(), kHugePageSize - pageSize());
  waitForPages();
  EXPECT_EQ(pages.count(), 0);
}

TEST(PagesAhead, FreedMemoryDoesNoHarm) {
  {
    const Pages pages(PROT_READ | PROT_WRITE);
    makePagesAhead(pages.memory(), kSize);
  }
  waitForPages();
}

TEST(PagesAhead, MoreThanIsWaitedForIsForgotten) {
  const Pages pages(PROT_READ | PROT_WRITE);
  for (int i = 0; i < 1000; ++i) makePagesAhead(pages.memory(), kSize);
  waitForPages();
}

std::size_t residentPages() {
  std::size_t all = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident;
}

// What others have left would do instead.
class PagesForLaterTest : public ::testing::Test {
 protected:
  PagesForLaterTest() { giveBackSpareMemory(); }
  ~PagesForLaterTest() override { giveBackSpareMemory(); }
};

// How many there are for who asks next, when so much time was left to make them.
std::size_t pagesMadeIn(std::chrono::milliseconds time, std::size_t size) {
  giveBackSpareMemory();
  {
    const PagesForLater pages(size);
    std::this_thread::sleep_for(time);
  }
  void* const memory = allocateLarge(size);
  const std::size_t made = pagesIn(memory, size);
  freeLarge(memory, size);
  return made;
}

TEST_F(PagesForLaterTest, AreThereForWhoAsksNext) {
  constexpr std::size_t kLarge = 16 * kHugePageSize;
  constexpr std::chrono::milliseconds kLongest = std::chrono::seconds(30);
  const std::size_t all = allPages() == 0 ? 0 : kLarge / pageSize();
  std::chrono::milliseconds time(5);
  std::size_t made = pagesMadeIn(time, kLarge);
  while (made < all && time < kLongest) made = pagesMadeIn(time *= 2, kLarge);
  EXPECT_EQ(made, all);
}

TEST_F(PagesForLaterTest, WaitForThoseThatAreNeededSooner) {
  constexpr std::size_t kMuch = 512 * kHugePageSize;
  {
    const PagesForLater pages(kMuch);
    waitForPages();
  }
  EXPECT_LT(residentPages(), kMuch / pageSize());
}

// Those under way are still made, but no others.
TEST_F(PagesForLaterTest, AreNotMadeAnyMoreWhenDestroyed) {
  constexpr std::size_t kMuch = 512 * kHugePageSize;
  { const PagesForLater pages(kMuch); }
  void* const memory = allocateLarge(kMuch);
  waitForPages();
  const std::size_t made = pagesIn(memory, kMuch);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(pagesIn(memory, kMuch), made);
  freeLarge(memory, kMuch);
}

TEST_F(PagesForLaterTest, DoNothingWithoutMemory) {
  for (const std::size_t size :
       {std::size_t{0}, kHugePageSize - 1, std::size_t{1} << 60, SIZE_MAX}) {
    const PagesForLater pages(size);
    waitForPages();
  }
}

TEST(PagesAhead, LargeVectorIsFilled) {
  struct Element {
    std::uint32_t value = 5;
  };
  constexpr std::size_t kCount = 3 * kHugePageSize / sizeof(Element) + 1;
  const auto vector = makeLargeVector<Element>(kCount);
  ASSERT_EQ(vector.size(), kCount);
  EXPECT_TRUE(std::all_of(vector.begin(), vector.end(),
                          [](const Element& element) { return element.value == 5; }));
  EXPECT_TRUE(makeLargeVector<Element>(0).empty());
}

}  // namespace
}  // namespace Orvane::test
