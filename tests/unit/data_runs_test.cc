// Data records of tracks that are laid out in runs: which leaf has which.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "output/data_record_index.h"
#include "output/two_table_layout.h"
#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "seeded_random.h"
#include "tree/menu_tree.h"
#include "tree/track.h"
#include "two_tables.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class DataRuns : public ::testing::Test {
 protected:
  // Tracks "t1", "t2" and so on, of ids that nothing else has.
  explicit DataRuns(std::size_t count = 12) : tracks_(count), titles_(count) {
    tree_.setTrackTable(table_);
    for (std::size_t i = 0; i < count; ++i) {
      titles_[i] = titleOf(i + 1);
      tracks_[i].setTitle(titles_[i]);
      tracks_[i].setMediaId(static_cast<std::uint32_t>(1000 + i));
      table_.push_back(&tracks_[i]);
    }
  }

  static std::string titleOf(std::size_t number) {
    std::string title(1, 't');
    return title += std::to_string(number);
  }

  MenuNode& addMenu(const std::vector<std::uint32_t>& numbers) {
    MenuNode& menu = tree_.getRoot()->appendChild([](MenuNode&) {});
    for (const std::uint32_t number : numbers) {
      menu.appendLeaf(table_, number);
      leafNames_.push_back(titleOf(number));
    }
    return menu;
  }

  // The root's and the menus' records come first, then those of the leaves, menu by menu.
  Tables written() const {
    RecordingBuffer buffer;
    writeTwoTable(tree_, buffer);
    return Tables(buffer.content);
  }

  void expectLeafNames() const {
    const std::vector<std::string> names = written().treeNames();
    const std::size_t before = 1 + tree_.getRoot()->childCount();
    ASSERT_GE(names.size(), before);
    EXPECT_THAT(std::vector(names.begin() + static_cast<std::ptrdiff_t>(before), names.end()),
                ElementsAreArray(leafNames_));
  }

  // Tables in which menus are laid out behind the root's record.
  struct Layout {
    explicit Layout(const MenuTree& tree) : index(tree) { dataTable.appendLeaf(tree.root()); }

    void add(const MenuNode& menu) { layoutChildren(&menu, treeTable, dataTable, index); }

    DataRecordIndex index;
    TreeTable treeTable;
    DataTable dataTable;
  };

  std::vector<Track> tracks_;
  std::vector<std::string> titles_;
  TrackTable table_;
  MenuTree tree_;
  std::vector<std::string> leafNames_;
};

TEST_F(DataRuns, AreInTheOrderOfTheirLeaves) {
  addMenu({3, 1, 2, 5, 4});
  addMenu({6, 7});
  addMenu({8, 9, 10, 11});
  expectLeafNames();
  EXPECT_THAT(written().names, ElementsAre("root", "", "t3", "t1", "t2", "t5", "t4", "t6", "t7",
                                           "t8", "t9", "t10", "t11"));
}

TEST_F(DataRuns, AreSharedByLeavesThatComeLater) {
  addMenu({1, 2, 3, 4, 5});
  addMenu({4, 2});
  addMenu({5, 5, 1, 3, 4, 2});
  addMenu({1});
  expectLeafNames();
  EXPECT_EQ(written().data.size(), 7U);
}

TEST_F(DataRuns, EndWhereATrackHasARecord) {
  addMenu({1, 2, 3, 4, 3, 5, 6, 7, 8, 9});
  addMenu({10, 1, 11, 2, 12});
  addMenu({12, 9});
  expectLeafNames();
  EXPECT_THAT(written().names, ElementsAre("root", "", "t1", "t2", "t3", "t4", "t5", "t6", "t7",
                                           "t8", "t9", "t10", "t11", "t12"));
}

TEST_F(DataRuns, EndWhereATrackIsSearchedFor) {
  tracks_[2].setMediaId(77);  // as the menus have
  tracks_[6].setMediaId(77);
  tracks_[7].setTitle("t7");
  tracks_[7].setMediaId(77);  // the track before once more
  for (MenuNode* menu : {&addMenu({1, 2, 3, 4, 5, 6, 7, 8, 9}), &addMenu({10, 8, 3, 2})}) {
    menu->setMediaId(77);
  }
  for (std::string& name : leafNames_) name = name == "t8" ? "t7" : name;
  expectLeafNames();
  EXPECT_THAT(written().names,
              ElementsAre("root", "", "t1", "t2", "t3", "t4", "t5", "t6", "t7", "t9", "t10"));
}

TEST_F(DataRuns, CountUpWhereAllTracksAreNew) {
  MenuNode& first = addMenu({1, 2, 3, 4});
  MenuNode& second = addMenu({5, 6, 7, 8, 1});
  Layout layout(tree_);
  layout.add(first);
  layout.add(second);
  ASSERT_EQ(layout.treeTable.runs().size(), 2U);
  EXPECT_EQ(layout.treeTable.runs()[0].first, 1U);
  EXPECT_EQ(layout.treeTable.runs()[1].first, TreeTable::kNotCounted);
}

TEST_F(DataRuns, OfTracksSearchedForAreCounted) {
  tracks_[2].setMediaId(77);
  MenuNode& menu = addMenu({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  menu.setMediaId(77);
  Layout layout(tree_);
  layout.add(*tree_.getRoot());
  EXPECT_EQ(layout.index.tracksWithoutRecord, 1U);
}

TEST_F(DataRuns, AreEnteredWhenAllIsLaidOut) {
  addMenu({2, 1, 4, 3, 5});
  addMenu({7, 6});
  Layout layout(tree_);
  layout.add(*tree_.getRoot());
  EXPECT_EQ(layout.index.tracksWithoutRecord, 5U);
  layout.index.endSearch(layout.dataTable);
  EXPECT_THAT(layout.index.records,
              ElementsAre(0U, 3U, 2U, 5U, 4U, 6U, 8U, 7U, 0U, 0U, 0U, 0U, 0U));
}

class ManyDataRuns : public DataRuns {
 protected:
  static constexpr std::uint32_t kTracks = 220'000;
  ManyDataRuns() : DataRuns(kTracks) {}
};

// Steps in which runs are entered begin and end at multiples of some thousands.
TEST_F(ManyDataRuns, AreEnteredWhereverTheyBeginAndEnd) {
  for (const std::size_t before : {1U, 4'095U, 4'096U, 4'097U, 8'190U, 8'191U, 8'192U}) {
    for (const std::size_t size : {4U, 5U, 4'095U, 4'096U, 4'097U, 9'000U}) {
      SCOPED_TRACE(::testing::Message() << size << " behind " << before);
      std::vector<std::uint32_t> numbers(size);
      std::iota(numbers.rbegin(), numbers.rend(), 1U);
      DataTable dataTable;
      for (std::size_t i = 0; i < before; ++i) dataTable.appendLeaf(tree_.root());
      dataTable.appendLeaves(numbers);
      DataRecordIndex index(tree_);
      index.endSearch(dataTable);
      for (std::size_t i = 0; i < size; ++i) {
        ASSERT_EQ(index.records[numbers[i]], before + i);
      }
      ASSERT_EQ(index.records[size + 1], 0U);
    }
  }
}

// Enough of them for several threads.
TEST_F(ManyDataRuns, KeepTheirOrder) {
  auto random = seededRandom(77);
  std::uint32_t number = 0;
  for (int i = 0; i < 300; ++i) {
    std::vector<std::uint32_t> numbers(random() % (i % 30 == 0 ? 20'000 : 500));
    for (std::uint32_t& each : numbers) {
      if (random() % 20'000 == 0) number = static_cast<std::uint32_t>(random()) % kTracks;
      number = (number + 1) % kTracks;
      each = number + 1;
    }
    addMenu(numbers);
  }
  std::vector<std::uint32_t> all(kTracks);
  std::iota(all.begin(), all.end(), 1U);
  addMenu(all);
  expectLeafNames();
}

}  // namespace
}  // namespace Orvane::test
