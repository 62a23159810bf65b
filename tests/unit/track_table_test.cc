#include "tree/track_table.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "allocation_probe.h"

namespace Orvane::test {
namespace {

constexpr std::size_t kMany = 10'000;  // more than two chunks

void expectTracks(const TrackTable& table, const std::vector<const Track*>& tracks) {
  ASSERT_EQ(table.size(), tracks.size() + 1);
  EXPECT_EQ(table[0], nullptr);
  for (std::size_t i = 0; i < tracks.size(); ++i) ASSERT_EQ(table[i + 1], tracks[i]) << i;
}

std::vector<const Track*> addressesOf(const std::vector<Track>& store) {
  std::vector<const Track*> tracks;
  for (const Track& track : store) tracks.push_back(&track);
  return tracks;
}

void add(TrackTable& table, const std::vector<const Track*>& tracks) {
  for (const Track* const track : tracks) table.push_back(track);
}

TEST(TrackTable, HasNoTrackWithNumberZero) {
  const TrackTable table;
  expectTracks(table, {});
}

TEST(TrackTable, FindsTracksThatStandInOrder) {
  const std::vector<Track> store(kMany);
  TrackTable table;
  add(table, addressesOf(store));
  expectTracks(table, addressesOf(store));
}

TEST(TrackTable, FindsTracksThatStandAnywhere) {
  const std::vector<Track> store(kMany);
  std::vector<const Track*> tracks = addressesOf(store);
  for (std::size_t i = 0; i < kMany; ++i) std::swap(tracks[i], tracks[i * 7919 % kMany]);
  TrackTable table;
  add(table, tracks);
  expectTracks(table, tracks);
}

// Also where one chunk ends and the next begins.
TEST(TrackTable, FindsTracksOnBothSidesOfAGap) {
  const std::vector<Track> store(kMany);
  for (const std::size_t gap : {1U, 2U, 4094U, 4095U, 4096U, 5000U, 8191U}) {
    std::vector<const Track*> tracks = addressesOf(store);
    tracks.erase(tracks.begin() + static_cast<std::ptrdiff_t>(gap));
    TrackTable table;
    add(table, tracks);
    expectTracks(table, tracks);
  }
}

TEST(TrackTable, FindsOneTrackUnderSeveralNumbers) {
  const std::vector<Track> store(5000);
  std::vector<const Track*> tracks = addressesOf(store);
  tracks.insert(tracks.begin() + 4500, 3, &store[4500]);
  TrackTable table;
  add(table, tracks);
  expectTracks(table, tracks);
}

TEST(TrackTable, GivesANumberTakenBackToTheNext) {
  const std::vector<Track> store(kMany);
  const Track other;
  TrackTable table;
  for (const Track& track : store) {
    for (const Track* const notKept : {&other, &track}) {
      table.push_back(notKept);
      table.pop_back();
    }
    table.push_back(&track);
  }
  expectTracks(table, addressesOf(store));
}

TEST(TrackTable, TakesNoListForNoTracks) {
  const LimitedAllocations chunks(1);
  const TrackTable table;
  EXPECT_EQ(table.size(), 1U);
}

TEST(TrackTable, TakesNoMemoryForTracksThatStandInOrder) {
  const std::vector<Track> store(8000);
  TrackTable table;
  for (std::size_t i = 0; i < 4096; ++i) table.push_back(&store[i]);
  const LimitedAllocations none(0);
  for (std::size_t i = 4096; i < 8000; ++i) table.push_back(&store[i]);
  EXPECT_EQ(table[8000], &store[7999]);
}

}  // namespace
}  // namespace Orvane::test
