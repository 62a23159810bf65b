#include "inventory/album_runs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "seeded_random.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

struct AlbumRun {
  std::uint32_t album;
  std::size_t size;
};

// Joins such runs of numbers that count up, and gives those of each album.
std::vector<std::vector<std::uint32_t>> joined(const std::vector<AlbumRun>& given) {
  std::vector<std::uint32_t> numbers;
  for (const AlbumRun& run : given) numbers.resize(numbers.size() + run.size);
  for (std::uint32_t i = 0; i < numbers.size(); ++i) numbers[i] = i;
  AlbumRuns runs;
  std::uint32_t albums = 0;
  std::span<std::uint32_t> left = numbers;
  for (const AlbumRun& run : given) {
    runs.add(run.album, left.first(run.size));
    left = left.subspan(run.size);
    albums = std::max(albums, run.album + 1);
  }
  runs.join();
  std::vector<std::vector<std::uint32_t>> result;
  for (std::uint32_t album = 0; album < albums; ++album) {
    const std::span<std::uint32_t> its = runs.of(album);
    result.emplace_back(its.begin(), its.end());
  }
  EXPECT_THAT(numbers, ::testing::UnorderedElementsAreArray([&] {
                std::vector<std::uint32_t> all(numbers.size());
                for (std::uint32_t i = 0; i < all.size(); ++i) all[i] = i;
                return all;
              }()));
  return result;
}

TEST(AlbumRuns, OfNoAlbumsAreNone) {
  AlbumRuns runs;
  runs.join();
  EXPECT_TRUE(joined({}).empty());
}

TEST(AlbumRuns, OneEachStayWhereTheyAre) {
  EXPECT_THAT(joined({{0, 2}, {1, 1}, {2, 3}}),
              ElementsAre(ElementsAre(0U, 1U), ElementsAre(2U), ElementsAre(3U, 4U, 5U)));
}

TEST(AlbumRuns, SeveralArePutTogetherInTheirOrder) {
  EXPECT_THAT(joined({{0, 1}, {1, 2}, {0, 1}, {2, 1}, {1, 1}}),
              ElementsAre(ElementsAre(0U, 3U), ElementsAre(1U, 2U, 5U), ElementsAre(4U)));
  EXPECT_THAT(joined({{0, 2}, {0, 1}, {1, 1}}),
              ElementsAre(ElementsAre(0U, 1U, 2U), ElementsAre(3U)));
}

TEST(AlbumRuns, GroupsDontDisturbTheirNeighbours) {
  EXPECT_THAT(joined({{0, 1}, {1, 1}, {2, 1}, {1, 1}, {3, 2}, {4, 1}, {5, 1}, {4, 1}}),
              ElementsAre(ElementsAre(0U), ElementsAre(1U, 3U), ElementsAre(2U),
                          ElementsAre(4U, 5U), ElementsAre(6U, 8U), ElementsAre(7U)));
}

TEST(AlbumRuns, RandomOnesAreThoseOfTheirAlbums) {
  auto random = seededRandom(15);
  for (int round = 0; round < 2'000; ++round) {
    std::vector<AlbumRun> runs(random() % 40);
    std::vector<std::vector<std::uint32_t>> expected;
    std::uint32_t number = 0;
    for (AlbumRun& run : runs) {
      // One of the last few, or a new one.
      const std::size_t near = std::min<std::size_t>(expected.size(), random() % 5);
      run.album = static_cast<std::uint32_t>(expected.size() - near);
      run.size = 1 + random() % 3;
      if (run.album == expected.size()) expected.emplace_back();
      for (std::size_t i = 0; i < run.size; ++i) expected[run.album].push_back(number++);
    }
    ASSERT_THAT(joined(runs), ElementsAreArray(expected)) << round;
  }
}

}  // namespace
}  // namespace Orvane::test
