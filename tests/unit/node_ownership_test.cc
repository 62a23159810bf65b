// What must hold alike for a node that stands alone and for one that a tree made in its arena.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "allocation_probe.h"
#include "test_support.h"
#include "tree/huge_pages.h"
#include "tree/menu_tree.h"
#include "tree/pages_ahead.h"

namespace Orvane {
namespace {

using test::addMedia;
using test::addMenu;
using test::describeNode;

enum class Owner { kNone, kTree };

class NodeOwnership : public ::testing::TestWithParam<Owner> {
 protected:
  // A fresh node; each call gives another.
  MenuNode& fresh() {
    if (GetParam() == Owner::kTree) return tree_.getRoot()->appendChild([](MenuNode&) {});
    alone_.push_back(std::make_unique<MenuNode>());
    return *alone_.back();
  }

 private:
  MenuTree tree_;
  std::vector<std::unique_ptr<MenuNode>> alone_;
};

TEST_P(NodeOwnership, FreshNodeHasNothing) {
  const MenuNode& node = fresh();
  EXPECT_EQ(describeNode(node), "0 0 '' 0 0 0");
  EXPECT_EQ(node.getSpare(), 0U);
  EXPECT_EQ(node.getTrack(), nullptr);
  EXPECT_EQ(node.childCount(), 0U);
}

TEST_P(NodeOwnership, NumbersOfEverySizeAreKept) {
  MenuNode& node = fresh();
  const MenuNode& other = fresh();
  constexpr auto kMax = std::numeric_limits<std::uint32_t>::max();
  for (const std::uint32_t value :
       {1U, 253U, 254U, 255U, 256U, 257U, 65535U, 65536U, kMax, 255U, 0U}) {
    node.setAll(value, value, "", value, value, value);
    EXPECT_EQ(node.setSpare(value), value);
    EXPECT_EQ(node.getNodeType(), value);
    EXPECT_EQ(node.getMediaId(), value);
    EXPECT_EQ(node.getRecType(), value);
    EXPECT_EQ(node.getRating(), value);
    EXPECT_EQ(node.getAttribMask(), value);
    EXPECT_EQ(node.getSpare(), value);
  }
  EXPECT_EQ(describeNode(other), "0 0 '' 0 0 0") << "nodes must not share what was set";
}

TEST_P(NodeOwnership, EachNumberIsWideByItself) {
  MenuNode& node = fresh();
  node.setAll(300, 0, "", 1, 2, 3);
  EXPECT_EQ(describeNode(node), "300 0 '' 1 2 3");
  node.setAll(1, 0, "", 300, 2, 3);
  EXPECT_EQ(describeNode(node), "1 0 '' 300 2 3");
  node.setAll(1, 0, "", 2, 300, 3);
  EXPECT_EQ(describeNode(node), "1 0 '' 2 300 3");
}

TEST_P(NodeOwnership, NameRule) {
  const std::string name(65, 'n');
  MenuNode& node = fresh();
  node.setName(name);
  EXPECT_EQ(node.getName(), name.substr(3));
  node.setName(name.substr(1));
  EXPECT_EQ(node.getName(), name.substr(1));
  node.setName("abc");
  node.setName(name);
  EXPECT_EQ(node.getName(), name.substr(3) + "abc");
  node.setName(node.getName());
  EXPECT_EQ(node.getName(), name.substr(3) + name.substr(3) + "abc");
  node.setName("");
  EXPECT_EQ(node.getName(), "");
}

TEST_P(NodeOwnership, NodeWithWideNumbersCanBeRenamed) {
  MenuNode& node = fresh();
  node.setRating(1000);
  for (const char* const name : {"one", "two", "three"}) {
    node.setName(name);
    EXPECT_EQ(node.getName(), name);
  }
  EXPECT_EQ(node.getRating(), 1000U);
}

TEST_P(NodeOwnership, NamesPileUpToAnyLength) {
  MenuNode& node = fresh();
  std::string expected;
  for (char c = 'a'; c < 'm'; ++c) {
    node.setName(std::string(70, c));
    expected.insert(0, std::string(62, c));
    ASSERT_EQ(node.getName(), expected);
  }
  node.setName("short");
  EXPECT_EQ(node.getName(), "short");
}

TEST_P(NodeOwnership, NameIsACopy) {
  MenuNode& node = fresh();
  std::string text = "before";
  node.setName(text);
  text = "after!";
  EXPECT_EQ(node.getName(), "before");
}

class TrackLeaf : public NodeOwnership {
 protected:
  TrackLeaf() {
    track_.setTitle("title");
    track_.setMediaId(9);
  }

  MenuNode& leaf() {
    MenuNode& node = fresh();
    node.becomeLeafOf(track_);
    return node;
  }

  Track track_;
};

TEST_P(TrackLeaf, ShowsItsTrack) {
  const MenuNode& node = leaf();
  EXPECT_EQ(describeNode(node), "2 9 'title' 0 0 0");
  EXPECT_EQ(node.getTrack(), &track_);
  EXPECT_EQ(node.childCount(), 0U);
}

TEST_P(TrackLeaf, ShortensATitleAsAFreshNodeDoes) {
  const std::string title(65, 't');
  for (const std::size_t size : {63U, 64U, 65U}) {
    track_.setTitle(std::string_view(title).substr(0, size));
    MenuNode& other = fresh();
    other.setName(track_.getTitle());
    EXPECT_EQ(leaf().getName(), other.getName());
  }
}

TEST_P(TrackLeaf, KeepsItsTrackWithNumbersOfItsOwn) {
  MenuNode& node = leaf();
  node.setRecType(300);
  node.setRating(2);
  node.setAttribMask(3);
  node.setSpare(4);
  addMedia(node, 1, "child");
  EXPECT_EQ(describeNode(node), "2 9 'title' 300 2 3");
  EXPECT_EQ(node.getSpare(), 4U);
  EXPECT_EQ(node.childCount(), 1U);
  EXPECT_EQ(node.getTrack(), &track_);
}

TEST_P(TrackLeaf, KeepsItsTrackAndTheRestWhenItIsGivenValuesOfItsOwn) {
  MenuNode& named = leaf();
  named.setName("name");
  EXPECT_EQ(describeNode(named), "2 9 'name' 0 0 0");
  MenuNode& borrowing = leaf();
  borrowing.setBorrowedName("borrowed");
  EXPECT_EQ(describeNode(borrowing), "2 9 'borrowed' 0 0 0");
  MenuNode& longer = leaf();
  longer.setName(std::string(65, 'n'));
  EXPECT_EQ(longer.getName(), std::string(62, 'n') + "title");
  MenuNode& numbered = leaf();
  numbered.setMediaId(1);
  EXPECT_EQ(describeNode(numbered), "2 1 'title' 0 0 0");
  MenuNode& typed = leaf();
  typed.setNodeType(NODE_TYPE_MENU);
  EXPECT_EQ(describeNode(typed), "1 9 'title' 0 0 0");
  for (const MenuNode* node : {&named, &borrowing, &longer, &numbered, &typed}) {
    EXPECT_EQ(node->getTrack(), &track_);
  }
}

TEST_P(TrackLeaf, CanBeGivenAnotherTrack) {
  const Track other;
  for (const Track* const track : {static_cast<const Track*>(nullptr), &other}) {
    MenuNode& node = leaf();
    node.setTrack(track);
    EXPECT_EQ(node.getTrack(), track);
    EXPECT_EQ(describeNode(node), "2 9 'title' 0 0 0");
  }
}

TEST_P(NodeOwnership, AppendChildReturnsTheFilledLastChild) {
  MenuNode& node = fresh();
  addMedia(node, 1, "first");
  const MenuNode& child = node.appendChild([](MenuNode& c) { c.setName("second"); });
  EXPECT_EQ(child.getName(), "second");
  ASSERT_EQ(node.childCount(), 2U);
  EXPECT_EQ(node.childrenBegin()[1], &child);
}

TEST_P(NodeOwnership, AppendChildAppendsNothingWhenFillingFails) {
  MenuNode& node = fresh();
  const auto fail = [](MenuNode& child) {
    child.setName("lost");
    throw std::runtime_error("on purpose");
  };
  EXPECT_THROW(node.appendChild(fail), std::runtime_error);
  EXPECT_EQ(node.childCount(), 0U);
  const MenuNode& child = node.appendChild([](MenuNode& c) { c.setName("kept"); });
  ASSERT_EQ(node.childCount(), 1U);
  EXPECT_EQ(*node.childrenBegin(), &child);
}

TEST_P(NodeOwnership, MenusThatGrowInTurnKeepTheirChildren) {
  constexpr std::uint32_t kMenus = 7;
  constexpr std::uint32_t kChildren = 300;
  std::vector<MenuNode*> menus;
  for (std::uint32_t i = 0; i < kMenus; ++i) menus.push_back(&fresh());
  for (std::uint32_t id = 0; id < kMenus * kChildren; ++id) {
    // Some menus grow more slowly, so that they meet what the others have given back.
    if (id % kMenus % 2 == 0 || id % 3 == 0) {
      menus[id % kMenus]->appendChild([&](MenuNode& child) { child.setMediaId(id); });
    }
  }
  std::size_t seen = 0;
  for (std::uint32_t i = 0; i < kMenus; ++i) {
    std::uint32_t expected = i;
    for (auto p = menus[i]->firstChild(); menus[i]->hasMoreChildren(); p = menus[i]->nextChild()) {
      while (!(i % 2 == 0 || expected % 3 == 0)) expected += kMenus;
      ASSERT_EQ((*p)->getMediaId(), expected);
      expected += kMenus;
      ++seen;
    }
  }
  EXPECT_EQ(seen, 4 * kChildren + 3 * kChildren / 3);
}

constexpr auto kOwnerName = [](const auto& parameter) {
  return parameter.param == Owner::kNone ? "Alone" : "OfATree";
};
INSTANTIATE_TEST_SUITE_P(Owners, NodeOwnership, ::testing::Values(Owner::kNone, Owner::kTree),
                         kOwnerName);
INSTANTIATE_TEST_SUITE_P(Owners, TrackLeaf, ::testing::Values(Owner::kNone, Owner::kTree),
                         kOwnerName);

TEST(NodeOwnershipMemory, TreeFreesItsOwnNodesAndAdoptedOnes) {
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuTree tree;
    MenuNode& made = tree.getRoot()->appendChild([](MenuNode& node) { node.setName("made"); });
    MenuNode& adopted = addMenu(made, 300, "adopted", 300);
    addMedia(adopted, 1, "beneath it");
    adopted.appendChild([](MenuNode& node) { node.setName("made by the adopted node"); });
    made.appendChild([](MenuNode& node) { node.setRating(1000); });
    EXPECT_THROW(adopted.appendChild([](MenuNode& node) {
      node.setName("lost");
      throw std::runtime_error("on purpose");
    }),
                 std::runtime_error);
    EXPECT_EQ(made.childCount(), 2U);
    EXPECT_GT(test::liveAllocations(), before);
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(NodeOwnershipMemory, TreeFreesWhatAWideMenuTook) {
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuTree tree;
    for (int i = 0; i < 20'000; ++i) tree.getRoot()->appendChild([](MenuNode&) {});
    EXPECT_EQ(tree.getRoot()->childCount(), 20'000U);
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(NodeOwnershipMemory, TreeUsesOutgrownArraysAgain) {
  MenuTree tree;
  MenuNode& one = tree.getRoot()->appendChild([](MenuNode&) {});
  MenuNode& other = tree.getRoot()->appendChild([](MenuNode&) {});
  for (int i = 0; i < 4; ++i) one.appendChild([](MenuNode&) {});
  const MenuNode::Position outgrown = one.childrenBegin();
  one.appendChild([](MenuNode&) {});
  ASSERT_NE(one.childrenBegin(), outgrown);
  for (int i = 0; i < 4; ++i) other.appendChild([](MenuNode&) {});
  EXPECT_EQ(other.childrenBegin(), outgrown);
}

TEST(NodeOwnershipMemory, DeepTreeOfItsOwnNodesIsFreed) {
  makePagesAhead(nullptr, kHugePageSize);  // what does that is there once and for all
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuTree tree;
    MenuNode* deepest = tree.getRoot();
    for (int i = 0; i < 100000; ++i) deepest = &deepest->appendChild([](MenuNode&) {});
    EXPECT_EQ(deepest->childCount(), 0U);
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(NodeOwnershipMemory, DeepAdoptedSubtreeIsFreed) {
  makePagesAhead(nullptr, kHugePageSize);
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuTree tree;
    MenuNode* deepest = &addMenu(*tree.getRoot(), 0, "adopted");
    for (int i = 0; i < 100000; ++i) deepest = &deepest->appendChild([](MenuNode&) {});
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

}  // namespace
}  // namespace Orvane
