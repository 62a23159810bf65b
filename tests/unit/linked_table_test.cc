// Records in a table's order, whatever they are kept as.
#include "output/linked_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <vector>

#include "output/linked_table_reader.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// What it was made from, and where it is linked to.
struct Entry {
  std::uint32_t from = 0;
  std::uint32_t firstChildIndex = 0;

  using Leaf = std::uint32_t;
  static Entry ofLeaf(Leaf leaf) { return {leaf, 0}; }
};

class LinkedTables : public ::testing::Test {
 protected:
  static Entry ofTrack(std::uint32_t track) { return {1000 + track, 0}; }

  // What all entries were made from, read so many at a time.
  std::vector<std::uint32_t> read(std::size_t atATime) const {
    LinkedTableReader<Entry> reader(table_);
    std::vector<Entry> some(3);
    std::vector<std::uint32_t> all;
    for (reader.read(some, atATime, ofTrack); !some.empty(); reader.read(some, atATime, ofTrack)) {
      EXPECT_LE(some.size(), atATime);
      for (const Entry& entry : some) all.push_back(entry.from);
    }
    return all;
  }

  // The same, by readers each of which begins where another has skipped to.
  std::vector<std::uint32_t> readBySkipping(std::size_t atATime) const {
    LinkedTableReader<Entry> reader(table_);
    std::vector<Entry> some;
    std::vector<std::uint32_t> all;
    for (LinkedTableReader<Entry> from = reader; reader.skip(atATime); from = reader) {
      from.read(some, atATime, ofTrack);
      for (const Entry& entry : some) all.push_back(entry.from);
    }
    reader.read(some, atATime, ofTrack);
    EXPECT_THAT(some, IsEmpty());
    return all;
  }

  LinkedTable<Entry> table_;
};

TEST_F(LinkedTables, OfNothingGiveNothing) {
  EXPECT_EQ(table_.size(), 0U);
  EXPECT_THAT(read(5), IsEmpty());
  EXPECT_THAT(readBySkipping(5), IsEmpty());
}

TEST_F(LinkedTables, KeepTheOrderOfAllKinds) {
  const std::array<std::uint32_t, 5> tracks = {5, 3, 9, 3, 7};
  table_.append({1});
  table_.appendLeaves(std::span(tracks).first(3));
  table_.appendLeaves(std::span(tracks).last(2));
  table_.appendLeaf(2);
  table_.appendLeaves({});
  table_.append({3});
  table_.append({4});
  table_.appendLeaves({});
  table_.appendLeaves(std::span(tracks).first(1));
  table_.append({6});
  table_.appendLeaf(7);
  table_.appendLeaf(8);
  EXPECT_EQ(table_.size(), 13U);
  for (std::size_t atATime = 1; atATime < 15; ++atATime) {
    EXPECT_THAT(read(atATime),
                ElementsAre(1U, 1005U, 1003U, 1009U, 1003U, 1007U, 2U, 3U, 4U, 1005U, 6U, 7U, 8U))
        << atATime << " at a time";
    EXPECT_EQ(readBySkipping(atATime), read(atATime)) << atATime << " at a time";
  }
}

TEST_F(LinkedTables, LinkWhatWasAppendedForIt) {
  const std::array<std::uint32_t, 2> tracks = {1, 2};
  EXPECT_EQ(table_.appendLeaf(10), LinkedTable<Entry>::kNeverLinked);
  const auto first = table_.append({11});
  table_.appendLeaves(tracks);
  const auto second = table_.append({12});
  table_.setFirstChild(second, 77);
  table_.setFirstChild(first, 66);
  std::vector<Entry> entries;
  LinkedTableReader<Entry>(table_).read(entries, 100, ofTrack);
  ASSERT_EQ(entries.size(), 5U);
  EXPECT_EQ(entries[1].firstChildIndex, 66U);
  EXPECT_EQ(entries[4].firstChildIndex, 77U);
  EXPECT_EQ(entries[0].firstChildIndex, 0U);
}

TEST_F(LinkedTables, LeavesThatCountUpAreNotAskedFor) {
  const std::array<std::uint32_t, 3> tracks = {8, 1, 2};
  table_.appendLeaf(5);
  table_.appendLeaves(tracks, 40);
  table_.appendLeaves(tracks);
  table_.appendLeaves(std::span(tracks).first(2), 60);
  for (std::size_t atATime = 1; atATime < 11; ++atATime) {
    EXPECT_THAT(read(atATime), ElementsAre(5U, 40U, 41U, 42U, 1008U, 1001U, 1002U, 60U, 61U))
        << atATime << " at a time";
    EXPECT_EQ(readBySkipping(atATime), read(atATime)) << atATime << " at a time";
  }
}

TEST_F(LinkedTables, TellTheirRuns) {
  const std::array<std::uint32_t, 3> tracks = {8, 1, 2};
  table_.appendLeaf(5);
  table_.append({7});
  table_.appendLeaves(tracks);
  table_.appendLeaf(9);
  ASSERT_EQ(table_.runs().size(), 1U);
  EXPECT_EQ(table_.runs()[0].tracks, tracks.data());
  EXPECT_EQ(table_.runs()[0].begin, 2U);
  EXPECT_EQ(table_.runs()[0].end, 5U);
}

TEST_F(LinkedTables, AreEmptyWhenCleared) {
  const std::array<std::uint32_t, 2> tracks = {1, 2};
  table_.append({11});
  table_.appendLeaves(tracks);
  table_.appendLeaf(1);
  table_.clear();
  EXPECT_EQ(table_.size(), 0U);
  EXPECT_THAT(read(5), IsEmpty());
  table_.appendLeaf(8);
  EXPECT_THAT(read(5), ElementsAre(8U));
}

// The numbers themselves aren't looked at before the records are read: there are none here.
TEST_F(LinkedTables, HaveAsManyRecordsAsAnIndexCanTell) {
  const std::uint32_t none = 0;
  constexpr std::size_t kHalf = 0x7FFFFFFF;
  table_.appendLeaves({&none, kHalf});
  table_.appendLeaves({&none, kHalf});
  EXPECT_THROW(table_.appendLeaves({&none, 2}), std::length_error);
  EXPECT_EQ(table_.size(), 0xFFFFFFFE);
  table_.appendLeaf(1);
  EXPECT_THROW(table_.appendLeaf(2), std::length_error);
  EXPECT_THROW(table_.append({3}), std::length_error);
  EXPECT_EQ(table_.size(), 0xFFFFFFFF);
}

}  // namespace
}  // namespace Orvane::test
