// Leaves of tracks that stand among a menu's children as numbers must look like any other node.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <new>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "allocation_probe.h"
#include "output/one_table_writer.h"
#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "seeded_random.h"
#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

class TrackChildren : public ::testing::Test {
 protected:
  TrackChildren() { tree_.setTrackTable(tracks_); }

  // Returns the number that the track has.
  std::uint32_t addTrack(std::uint32_t id, std::string_view title) {
    Track& track = store_.emplace_back();
    track.setMediaId(id);
    track.setTitle(titles_.emplace_back(title));
    tracks_.push_back(&track);
    return static_cast<std::uint32_t>(tracks_.size() - 1);
  }

  std::deque<std::string> titles_;
  std::deque<Track> store_;
  TrackTable tracks_;
  MenuTree tree_;
  MenuNode& root_ = *tree_.getRoot();
};

std::vector<std::string> describeChildren(MenuNode& menu) {
  std::vector<std::string> result;
  for (auto p = menu.firstChild(); menu.hasMoreChildren(); p = menu.nextChild()) {
    result.push_back(describeNode(**p));
  }
  return result;
}

TEST_F(TrackChildren, AreNumbersUntilSomebodyLooks) {
  root_.appendLeaf(tracks_, addTrack(7, "seven"));
  root_.appendLeaf(tracks_, addTrack(8, "eight"));
  ASSERT_EQ(root_.childCount(), 2U);
  ASSERT_FALSE(root_.childAt(0).isNode());
  EXPECT_EQ(root_.childAt(0).trackNumber(), 1U);
  EXPECT_THAT(root_.trackNumbers(), ElementsAre(1U, 2U));

  EXPECT_THAT(describeChildren(root_), ElementsAre("2 7 'seven' 0 0 0", "2 8 'eight' 0 0 0"));
  ASSERT_TRUE(root_.childAt(0).isNode());
  EXPECT_EQ(root_.childAt(0).node()->getTrack(), &store_[0]);
  EXPECT_EQ(root_.childAt(0).node(), *root_.childrenBegin());
  EXPECT_EQ(root_.childrenBegin() + 2, root_.childrenEnd());
}

TEST_F(TrackChildren, AreNumbersWhereNodesWereGivenBack) {
  for (const char* const title : {"a", "b", "c", "d", "e"}) addTrack(1, title);
  addMedia(root_, 8, "eight");
  addMedia(root_, 9, "nine");
  root_.keepChildren(0);
  std::vector<std::uint32_t> numbers = {2, 5, 1, 4, 3};
  root_.appendLeaves(tracks_, numbers);
  EXPECT_THAT(root_.trackNumbers(), ElementsAre(2U, 5U, 1U, 4U, 3U));
  addMedia(root_, 7, "seven");
  EXPECT_THAT(describeChildren(root_),
              ElementsAre("2 1 'b' 0 0 0", "2 1 'e' 0 0 0", "2 1 'a' 0 0 0", "2 1 'd' 0 0 0",
                          "2 1 'c' 0 0 0", "2 7 'seven' 0 0 0"));
}

TEST_F(TrackChildren, AreNodesBesideNodes) {
  root_.appendLeaf(tracks_, addTrack(7, "seven"));
  addMedia(root_, 8, "eight");
  EXPECT_TRUE(root_.childAt(0).isNode());
  root_.appendLeaf(tracks_, addTrack(9, "nine"));
  EXPECT_TRUE(root_.childAt(2).isNode());
  EXPECT_TRUE(root_.trackNumbers().empty());
  EXPECT_TRUE(std::as_const(root_).trackNumbers().empty());
  EXPECT_THAT(describeChildren(root_),
              ElementsAre("2 7 'seven' 0 0 0", "2 8 'eight' 0 0 0", "2 9 'nine' 0 0 0"));
}

// Large arrays leave the tree as they are outgrown, small ones serve other menus.
TEST_F(TrackChildren, AreAsManyAsWanted) {
  constexpr std::uint32_t kLeaves = 1'100'000;
  addTrack(7, "seven");
  addTrack(8, "eight");
  for (std::uint32_t i = 0; i < kLeaves; ++i) root_.appendLeaf(tracks_, 1 + i % 2);
  ASSERT_EQ(root_.childCount(), kLeaves);
  for (std::uint32_t i = 0; i < kLeaves; ++i) ASSERT_EQ(root_.trackNumbers()[i], 1 + i % 2);
  for (std::uint32_t i = 0; i < kLeaves; ++i) {
    ASSERT_EQ(root_.childrenBegin()[i]->getMediaId(), 7 + i % 2);
  }
}

TEST_F(TrackChildren, EveryWayToLookMakesNodes) {
  const std::uint32_t number = addTrack(7, "seven");
  MenuNode wanted;
  wanted.becomeLeafOf(store_[0]);
  MenuNode::Position position = nullptr;
  for (int way = 0; way < 6; ++way) {
    MenuNode& menu = root_.appendChild([](MenuNode&) {});
    const MenuNode& constMenu = menu;
    menu.appendLeaf(tracks_, number);
    ASSERT_FALSE(menu.childAt(0).isNode());
    switch (way) {
      case 0:
        EXPECT_TRUE(menu.findChildByName(position, "seven"));
        break;
      case 1:
        EXPECT_TRUE(menu.findChildByNameAndMediaId(position, "seven", 7));
        break;
      case 2:
        EXPECT_EQ(menu.findMatchingChild(wanted)->getName(), "seven");
        break;
      case 3:
        menu.nextChild();
        break;
      case 4:
        EXPECT_EQ(constMenu.childrenBegin()[0]->getName(), "seven");
        break;
      default:
        EXPECT_EQ(constMenu.childrenEnd()[-1]->getName(), "seven");
    }
    EXPECT_TRUE(menu.childAt(0).isNode()) << way;
  }
}

TEST_F(TrackChildren, EachBecomesANodeOfItsOwn) {
  const std::uint32_t number = addTrack(7, "seven");
  for (int i = 0; i < 3; ++i) root_.appendLeaf(tracks_, number);
  root_.childrenBegin()[1]->setName("mine");
  EXPECT_THAT(describeChildren(root_),
              ElementsAre("2 7 'seven' 0 0 0", "2 7 'mine' 0 0 0", "2 7 'seven' 0 0 0"));
}

TEST_F(TrackChildren, AreNodesWhereNumbersMeanNothing) {
  const std::uint32_t number = addTrack(7, "seven");
  TrackTable other;
  addTracks(other, {&store_[0]});
  root_.appendLeaf(other, number);
  EXPECT_TRUE(root_.childAt(0).isNode());

  MenuNode alone;
  EXPECT_EQ(alone.getTrackTable(), nullptr);
  alone.appendLeaf(tracks_, number);
  EXPECT_TRUE(alone.childAt(0).isNode());
  EXPECT_EQ(describeNode(**alone.childrenBegin()), "2 7 'seven' 0 0 0");

  tree_.setTrackTable(other);
  EXPECT_EQ(tree_.getTrackTable(), &tracks_) << "the first table counts";
}

TEST_F(TrackChildren, StayNumbersWhenSomeAreTakenAway) {
  for (const char* title : {"a", "b", "c"}) root_.appendLeaf(tracks_, addTrack(7, title));
  root_.keepChildren(1);
  EXPECT_THAT(root_.trackNumbers(), ElementsAre(1U));
  root_.keepChildren(0);
  EXPECT_THAT(root_.trackNumbers(), ElementsAre());
  root_.appendLeaf(tracks_, 3);
  addMedia(root_, 8, "node");
  EXPECT_THAT(describeChildren(root_), ElementsAre("2 7 'c' 0 0 0", "2 8 'node' 0 0 0"));
}

TEST_F(TrackChildren, AreNotCountedAsNodes) {
  const std::uint32_t number = addTrack(7, "seven");
  const std::size_t before = tree_.nodeCountHint();
  for (int i = 0; i < 100; ++i) root_.appendLeaf(tracks_, number);
  EXPECT_EQ(tree_.nodeCountHint(), before);
  static_cast<void>(root_.childrenBegin());
  EXPECT_EQ(tree_.nodeCountHint(), before + 100) << "now they are nodes";
}

// The same tree with nodes in all places, and what std::sort makes of it.
TEST_F(TrackChildren, AreSortedAndWrittenAsNodesAre) {
  std::mt19937 random = seededRandom(11);
  const auto below = [&](std::size_t limit) {
    return static_cast<std::uint32_t>(random() % limit);
  };
  for (int round = 0; round < 40; ++round) {
    MenuTree numbers;
    MenuTree nodes;
    numbers.setTrackTable(tracks_);
    const std::uint32_t titles = 1 + below(30);
    for (std::uint32_t i = 0; i < 60; ++i) {
      addTrack(below(40), std::string(below(2) * 62, 't') + std::to_string(below(titles)));
    }
    for (std::uint32_t m = 0; m < 5; ++m) {
      MenuNode& a = addMenu(*numbers.getRoot(), m, "Songs", 7);
      MenuNode& b = addMenu(*nodes.getRoot(), m, "Songs", 7);
      MenuNode& inA = a.appendChild([](MenuNode& menu) { menu.setRecType(RecType::kAlbum); });
      MenuNode& inB = b.appendChild([](MenuNode& menu) { menu.setRecType(RecType::kAlbum); });
      for (std::uint32_t i = below(300); i-- > 0;) {
        const std::uint32_t number = 1 + below(tracks_.size() - 1);
        const bool deeper = below(2) == 0;
        (deeper ? inA : a).appendLeaf(tracks_, number);
        (deeper ? inB : b).appendChild([&](MenuNode& leaf) {
          leaf.becomeLeafOf(*tracks_[number]);
        });
      }
    }
    for (const bool sorted : {false, true}) {
      if (sorted) {
        MenuTree::sortTree(numbers.getRoot());
        MenuTree::sortTree(nodes.getRoot());
      }
      for (const auto write : {writeOneTable, writeTwoTable}) {
        RecordingBuffer expected;
        RecordingBuffer actual;
        write(nodes, expected);
        write(numbers, actual);
        ASSERT_EQ(actual.content, expected.content) << round << sorted;
      }
    }
  }
}

TEST_F(TrackChildren, UseOutgrownArraysAgain) {
  const std::uint32_t number = addTrack(7, "seven");
  MenuNode& one = root_.appendChild([](MenuNode&) {});
  MenuNode& other = root_.appendChild([](MenuNode&) {});
  for (int i = 0; i < 4; ++i) one.appendLeaf(tracks_, number);
  const std::uint32_t* const outgrown = one.trackNumbers().data();
  one.appendLeaf(tracks_, number);
  ASSERT_NE(one.trackNumbers().data(), outgrown);
  for (int i = 0; i < 4; ++i) other.appendLeaf(tracks_, number);
  EXPECT_EQ(other.trackNumbers().data(), outgrown);
}

TEST_F(TrackChildren, StayNumbersWhenTheyAreSortedAndWritten) {
  MenuNode& songs = root_.appendChild([](MenuNode& menu) { menu.setName("Songs"); });
  for (const char* const title : {"c", "a", "b"}) songs.appendLeaf(tracks_, addTrack(1, title));
  MenuTree::sortTree(&root_);
  for (const auto write : {writeOneTable, writeTwoTable}) {
    RecordingBuffer buffer;
    write(tree_, buffer);
  }
  EXPECT_THAT(songs.trackNumbers(), ElementsAre(2U, 3U, 1U));
}

class KeptTrackChildren : public TrackChildren {
 protected:
  KeptTrackChildren() {
    for (const char* const title : {"c", "a", "b"}) addTrack(1, title);
    kept_ = tree_.keepNumbers({1, 2, 3});
  }

  MenuNode& songs_ = root_.appendChild([](MenuNode& menu) { menu.setName("Songs"); });
  std::span<std::uint32_t> kept_;
};

TEST_F(KeptTrackChildren, AreWhereTheyWereAlsoWhenSorted) {
  songs_.appendLeaves(tracks_, kept_);
  EXPECT_THAT(songs_.trackNumbers(), ElementsAre(1U, 2U, 3U));
  MenuTree::sortTree(&root_);
  EXPECT_EQ(songs_.trackNumbers().data(), kept_.data());
  EXPECT_THAT(kept_, ElementsAre(2U, 3U, 1U));
}

TEST_F(KeptTrackChildren, ComeBehindOthers) {
  songs_.appendLeaf(tracks_, 3);
  songs_.appendLeaves(tracks_, kept_);
  EXPECT_THAT(songs_.trackNumbers(), ElementsAre(3U, 1U, 2U, 3U));
  addMedia(songs_, 8, "eight");
  songs_.appendLeaves(tracks_, kept_.first(1));
  EXPECT_THAT(describeChildren(songs_),
              ElementsAre("2 1 'b' 0 0 0", "2 1 'c' 0 0 0", "2 1 'a' 0 0 0", "2 1 'b' 0 0 0",
                          "2 8 'eight' 0 0 0", "2 1 'c' 0 0 0"));
}

// What the tree keeps is no array that another menu could have.
TEST_F(KeptTrackChildren, AreLeftAloneWhenTheMenuGrows) {
  for (const bool becomesNodes : {false, true}) {
    MenuNode& menu = root_.appendChild([](MenuNode&) {});
    menu.appendLeaves(tracks_, kept_.first(2));
    if (becomesNodes) {
      EXPECT_THAT(describeChildren(menu), ElementsAre("2 1 'c' 0 0 0", "2 1 'a' 0 0 0"));
      addMedia(menu, 8, "eight");
    } else {
      menu.appendLeaf(tracks_, 2);
      EXPECT_THAT(menu.trackNumbers(), ElementsAre(1U, 2U, 2U));
    }
    EXPECT_EQ(menu.childCount(), 3U);
    for (int i = 0; i < 4; ++i) {
      MenuNode& other = root_.appendChild([](MenuNode&) {});
      for (int leaf = 0; leaf <= i; ++leaf) other.appendLeaf(tracks_, 3);
    }
    EXPECT_THAT(kept_, ElementsAre(1U, 2U, 3U));
  }
}

TEST_F(KeptTrackChildren, AreNodesWhereNumbersMeanNothing) {
  TrackTable other;
  addTracks(other, {&store_[0], &store_[1], &store_[2]});
  songs_.appendLeaves(other, kept_);
  EXPECT_TRUE(songs_.childAt(0).isNode());
  MenuNode alone;
  alone.appendLeaves(tracks_, kept_);
  EXPECT_TRUE(alone.childAt(0).isNode());
  EXPECT_EQ(describeChildren(alone), describeChildren(songs_));
}

TEST_F(KeptTrackChildren, NoneAreNoChildren) {
  songs_.appendLeaves(tracks_, {});
  EXPECT_FALSE(songs_.hasTrackNumbers());
  EXPECT_EQ(songs_.childCount(), 0U);
}

TEST_F(TrackChildren, LackOfMemoryLosesNone) {
  const std::uint32_t number = addTrack(7, "seven");
  constexpr std::size_t kLeaves = 2000;  // more than fit into what the tree has at hand
  for (std::size_t i = 0; i < kLeaves; ++i) root_.appendLeaf(tracks_, number);
  {
    const LimitedAllocations none(0);
    EXPECT_THROW(root_.firstChild(), std::bad_alloc);
  }
  EXPECT_EQ(describeChildren(root_), std::vector<std::string>(kLeaves, "2 7 'seven' 0 0 0"));
}

}  // namespace
}  // namespace Orvane::test
