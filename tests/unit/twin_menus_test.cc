// Two menus with leaves of the same tracks share what they hold until one of them changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "allocation_probe.h"
#include "output/one_table_writer.h"
#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

using Numbers = std::vector<std::uint32_t>;

Numbers numbersOf(const MenuNode& menu) {
  const auto numbers = menu.trackNumbers();
  return {numbers.begin(), numbers.end()};
}

class TwinMenus : public ::testing::Test {
 protected:
  TwinMenus() {
    tree_.setTrackTable(tracks_);
    for (const char* const title : {"c", "a", "b"}) addTrack(title);
  }

  void addTrack(const std::string& title) {
    Track& track = store_.emplace_back();
    track.setTitle(titles_.emplace_back(title));
    track.setMediaId(static_cast<std::uint32_t>(100 + tracks_.size()));
    tracks_.push_back(&track);
  }

  static MenuNode& appendMenu(MenuNode& parent, std::uint32_t id, const char* name,
                              std::uint32_t recType = RecType::kPlainMenu) {
    return parent.appendChild(
        [&](MenuNode& menu) { menu.setAll(NODE_TYPE_MENU, id, name, recType, 0, 0); });
  }

  struct Twins {
    MenuNode& artist;  // of the first
    MenuNode& first;
    MenuNode& second;  // in `list`
    MenuNode& list;
  };

  Twins addTwins(const Numbers& numbers = {1, 2, 3}) { return addTwins(*tree_.getRoot(), numbers); }
  Twins addTwins(MenuNode& parent, const Numbers& numbers) {
    MenuNode& artist = appendMenu(parent, 5, "artist", RecType::kArtist);
    MenuNode& list = appendMenu(parent, 6, "list", RecType::kArtist);
    MenuNode& first = appendMenu(artist, 7, "album", RecType::kAlbum);
    for (const std::uint32_t number : numbers) first.appendLeaf(tracks_, number);
    return {artist, first, list.appendTwinOf(first), list};
  }

  std::deque<std::string> titles_;
  std::deque<Track> store_;
  TrackTable tracks_;
  MenuTree tree_;
};

TEST_F(TwinMenus, LookAlike) {
  const Twins twins = addTwins();
  EXPECT_EQ(describeNode(twins.second), describeNode(twins.first));
  EXPECT_THAT(numbersOf(twins.second), ElementsAre(1U, 2U, 3U));
  EXPECT_EQ(twins.second.trackNumbersOfTwins().data(), twins.first.trackNumbersOfTwins().data());
  EXPECT_EQ(&**twins.list.childrenBegin(), &twins.second);
  EXPECT_TRUE(twins.first.hasTwin());
  EXPECT_TRUE(twins.second.hasTwin());
  EXPECT_FALSE(twins.list.hasTwin());
}

// Many leaves of few titles: to put what is in order into order again would give another one.
TEST_F(TwinMenus, AreSortedOnce) {
  Numbers numbers;
  for (std::uint32_t i = 0; i < 100; ++i) {
    addTrack("title " + std::to_string(i % 7));
    numbers.push_back(4 + i);
  }
  const Twins twins = addTwins(numbers);
  MenuNode& alone = appendMenu(*tree_.getRoot(), 8, "alone", RecType::kAlbum);
  for (const std::uint32_t number : numbers) alone.appendLeaf(tracks_, number);
  for (int round = 0; round < 2; ++round) {
    MenuTree::sortTree(tree_.getRoot());
    EXPECT_NE(numbersOf(alone), numbers);
    EXPECT_EQ(numbersOf(twins.first), numbersOf(alone));
    EXPECT_EQ(numbersOf(twins.second), numbersOf(alone));
    EXPECT_TRUE(twins.first.hasTwin()) << "sharing goes on";
    numbers = numbersOf(alone);
  }
}

TEST_F(TwinMenus, KeepTheirOrderWhenTheOtherIsSorted) {
  for (const bool sortsFirst : {true, false}) {
    const Twins twins = addTwins();
    MenuTree::sortTree(sortsFirst ? &twins.artist : &twins.list);
    EXPECT_THAT(numbersOf(sortsFirst ? twins.first : twins.second), ElementsAre(2U, 3U, 1U));
    EXPECT_THAT(numbersOf(sortsFirst ? twins.second : twins.first), ElementsAre(1U, 2U, 3U));
    MenuTree::sortTree(tree_.getRoot());
    EXPECT_THAT(numbersOf(twins.first), ElementsAre(2U, 3U, 1U));
    EXPECT_THAT(numbersOf(twins.second), ElementsAre(2U, 3U, 1U));
  }
}

TEST_F(TwinMenus, KeepWhatTheyHaveWhenTheOtherChanges) {
  MenuNode::Position position = nullptr;
  const std::array<std::function<void(MenuNode&)>, 11> changes = {
      // The first two add a leaf, the last one takes one away.
      [&](MenuNode& menu) { menu.appendLeaf(tracks_, 1); },
      [&](MenuNode& menu) { addMedia(menu, 8, "eight"); },
      [](MenuNode& menu) { static_cast<void>(menu.childrenBegin()); },
      [](MenuNode& menu) { (*menu.firstChild())->setName("mine"); },
      [](MenuNode& menu) { menu.nextChild(); },
      [&](MenuNode& menu) { menu.findChildByName(position, "b"); },
      [](MenuNode& menu) { menu.setAttribMask(9); },
      [](MenuNode& menu) { menu.setRating(1000); },
      [](MenuNode& menu) { menu.partFromTwin(); },
      [](MenuNode& menu) { std::ranges::reverse(menu.trackNumbers()); },
      [](MenuNode& menu) { menu.keepChildren(2); },
  };
  for (std::size_t change = 0; change < changes.size(); ++change) {
    for (const bool changesFirst : {true, false}) {
      SCOPED_TRACE(std::to_string(change) + (changesFirst ? " first" : " second"));
      const Twins twins = addTwins();
      MenuNode& changed = changesFirst ? twins.first : twins.second;
      MenuNode& other = changesFirst ? twins.second : twins.first;
      const std::string before = describeNode(other);
      changes.at(change)(changed);
      EXPECT_FALSE(changed.hasTwin());
      EXPECT_EQ(describeNode(other), before);
      EXPECT_EQ(numbersOf(other), Numbers({1, 2, 3}));
      other.appendLeaf(tracks_, 3);
      EXPECT_EQ(numbersOf(other), Numbers({1, 2, 3, 3}));
      EXPECT_EQ(changed.childCount(), change < 2 ? 4U : change < changes.size() - 1 ? 3U : 2U);
    }
  }
}

TEST_F(TwinMenus, WalkByThemselves) {
  const Twins twins = addTwins();
  twins.first.nextChild();
  twins.second.firstChild();
  EXPECT_EQ((*twins.first.nextChild())->getName(), "b");
  EXPECT_EQ((*twins.second.nextChild())->getName(), "a");
}

TEST_F(TwinMenus, OfUnusualMenusAreThemselvesToo) {
  MenuNode& list = appendMenu(*tree_.getRoot(), 6, "list");
  MenuNode& first = appendMenu(*tree_.getRoot(), 7, "album", RecType::kAlbum);
  first.setRating(1000);
  first.setSpare(3);
  first.appendLeaf(tracks_, 1);
  MenuNode& second = list.appendTwinOf(first);
  EXPECT_EQ(second.getRating(), 1000U);
  EXPECT_EQ(second.getSpare(), 3U);
  second.setRating(2000);
  second.setSpare(4);
  EXPECT_EQ(first.getRating(), 1000U);
  EXPECT_EQ(first.getSpare(), 3U);
  EXPECT_EQ(second.getRating(), 2000U);
  EXPECT_EQ(second.getSpare(), 4U);
}

TEST_F(TwinMenus, AreWrittenAsOthersAre) {
  addTwins();
  MenuTree plain;
  for (const auto& [id, name] : {std::pair(5U, "artist"), std::pair(6U, "list")}) {
    MenuNode& album = appendMenu(appendMenu(*plain.getRoot(), id, name, RecType::kArtist), 7,
                                 "album", RecType::kAlbum);
    for (const Track& track : store_) {
      album.appendChild([&](MenuNode& leaf) { leaf.becomeLeafOf(track); });
    }
  }
  for (const bool sorted : {false, true}) {
    if (sorted) {
      MenuTree::sortTree(tree_.getRoot());
      MenuTree::sortTree(plain.getRoot());
    }
    for (const auto write : {writeOneTable, writeTwoTable}) {
      RecordingBuffer expected;
      RecordingBuffer actual;
      write(plain, expected);
      write(tree_, actual);
      EXPECT_EQ(actual.content, expected.content) << sorted;
    }
  }
}

// Wherever memory runs out, the next attempt sorts as if nothing had been.
TEST_F(TwinMenus, AreSortedAfterLackOfMemory) {
  for (const bool sortsAll : {true, false}) {
    std::ptrdiff_t failures = 0;
    for (std::ptrdiff_t allowed = 0; failures == allowed; ++allowed) {
      MenuNode& parent = appendMenu(*tree_.getRoot(), 0, "parent");
      const Twins twins = addTwins(parent, {1, 2, 3});
      MenuNode* const top = sortsAll ? &parent : &twins.artist;
      try {
        const LimitedAllocations few(allowed);
        MenuTree::sortTree(top);
      } catch (const std::bad_alloc&) {
        ++failures;
      }
      MenuTree::sortTree(top);
      EXPECT_THAT(numbersOf(twins.first), ElementsAre(2U, 3U, 1U)) << allowed;
      EXPECT_EQ(numbersOf(twins.second), sortsAll ? Numbers({2, 3, 1}) : Numbers({1, 2, 3}));
    }
    EXPECT_GT(failures, 3);
  }
}

}  // namespace
}  // namespace Orvane::test
