#include "tree/menu_node.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "test_support.h"
#include "tree/menu_tree.h"
#include "tree/track.h"

namespace Orvane {

namespace {

using test::addMedia;
using test::addMenu;
using test::describeNode;

const std::string kName64(64, 'a');
const std::string kName65 = kName64 + "b";
const std::string kName62(62, 'a');

TEST(MenuNode, StartsWithNothing) {
  const MenuNode node;
  EXPECT_EQ(node.getNodeType(), 0U);
  EXPECT_EQ(node.getMediaId(), 0U);
  EXPECT_EQ(node.getName(), "");
  EXPECT_EQ(node.getRecType(), 0U);
  EXPECT_EQ(node.getRating(), 0U);
  EXPECT_EQ(node.getAttribMask(), 0U);
  EXPECT_EQ(node.getSpare(), 0U);
  EXPECT_EQ(node.getTrack(), nullptr);
  EXPECT_EQ(node.childCount(), 0U);
  EXPECT_EQ(node.childrenBegin(), node.childrenEnd());
}

TEST(MenuNode, HasNoVirtualOperations) {
  EXPECT_FALSE(std::is_polymorphic_v<MenuNode>);
}

TEST(MenuNode, CodesAreThoseInTheFile) {
  EXPECT_EQ(NODE_TYPE_MENU, 1U);
  EXPECT_EQ(NODE_TYPE_MEDIA, 2U);
  EXPECT_EQ(RecType::kMediaLeaf, 0U);
  EXPECT_EQ(RecType::kAlbum, 3U);
  EXPECT_EQ(RecType::kArtist, 4U);
  EXPECT_EQ(RecType::kGenre, 5U);
  EXPECT_EQ(RecType::kPlaylist, 6U);
  EXPECT_EQ(RecType::kPlainMenu, 7U);
  EXPECT_EQ(RecType::kOneStar, 11U);
  EXPECT_EQ(RecType::kTwoStars, 12U);
  EXPECT_EQ(RecType::kThreeStars, 13U);
}

TEST(MenuNode, WalkOverFreshNodeMakesNoStep) {
  MenuNode node;
  EXPECT_FALSE(node.hasMoreChildren());
  EXPECT_EQ(node.firstChild(), node.childrenEnd());
  EXPECT_FALSE(node.hasMoreChildren());
}

TEST(MenuNode, SettersStoreEachFieldByItself) {
  MenuNode node;
  node.setNodeType(0xFFFFFFFF);
  node.setMediaId(0xFFFFFFFE);
  node.setName("name");
  node.setRecType(0xFFFFFFFD);
  node.setRating(0xFFFFFFFC);
  node.setAttribMask(0xFFFFFFFB);
  EXPECT_EQ(node.getNodeType(), 0xFFFFFFFF);
  EXPECT_EQ(node.getMediaId(), 0xFFFFFFFE);
  EXPECT_EQ(node.getName(), "name");
  EXPECT_EQ(node.getRecType(), 0xFFFFFFFD);
  EXPECT_EQ(node.getRating(), 0xFFFFFFFC);
  EXPECT_EQ(node.getAttribMask(), 0xFFFFFFFB);
  EXPECT_EQ(node.getSpare(), 0U);
}

TEST(MenuNode, SetSpareReturnsWhatItStores) {
  MenuNode node;
  EXPECT_EQ(node.setSpare(77), 77U);
  EXPECT_EQ(node.getSpare(), 77U);
  EXPECT_EQ(node.setSpare(77), 77U);
  EXPECT_EQ(node.getSpare(), 77U);
}

TEST(MenuNode, SetTrackStoresThePointerOnly) {
  Track track;
  MenuNode node;
  for (int i = 0; i < 2; ++i) {
    node.setTrack(&track);
    EXPECT_EQ(node.getTrack(), &track);
  }
}

TEST(MenuNode, SetAllLeavesSpareTrackAndChildren) {
  Track track;
  MenuNode node;
  node.setSpare(5);
  node.setTrack(&track);
  const MenuNode& child = addMedia(node, 1, "child");
  node.setAll(1, 2, "three", 4, 5, 6);
  EXPECT_EQ(describeNode(node), "1 2 'three' 4 5 6");
  EXPECT_EQ(node.getSpare(), 5U);
  EXPECT_EQ(node.getTrack(), &track);
  ASSERT_EQ(node.childCount(), 1U);
  EXPECT_EQ(*node.childrenBegin(), &child);
}

TEST(MenuNode, SetAllAppliesTheNameRule) {
  MenuNode node;
  node.setAll(1, 0, "abc", 7, 0, 0);
  node.setAll(1, 0, kName65, 7, 0, 0);
  EXPECT_EQ(node.getName(), kName62 + "abc");
}

TEST(MenuNode, NameOf64IsStoredWhole) {
  MenuNode node;
  node.setName("before");
  node.setName(kName64);
  EXPECT_EQ(node.getName(), kName64);
}

TEST(MenuNode, NameOf65OnFreshNodeIsCutTo62) {
  MenuNode node;
  node.setName(kName65);
  EXPECT_EQ(node.getName(), kName62);
}

TEST(MenuNode, NameOf65OnNamedNodeIsPutInFront) {
  MenuNode node;
  node.setName("abc");
  node.setName(kName65);
  EXPECT_EQ(node.getName(), kName62 + "abc");
}

TEST(MenuNode, LongNamesPileUp) {
  MenuNode node;
  node.setName(std::string(65, 'x'));
  node.setName(std::string(1000, 'y'));
  EXPECT_EQ(node.getName(), std::string(62, 'y') + std::string(62, 'x'));
  node.setName("");
  EXPECT_EQ(node.getName(), "");
}

// In trees and alone, where what few nodes have is kept in different places.
TEST(MenuNode, LongNamesPileUpBeyondWhatANodeHasRoomFor) {
  MenuTree tree;
  MenuNode alone;
  for (MenuNode* const node : {&alone, &tree.getRoot()->appendChild([](MenuNode&) {})}) {
    std::string expected;
    for (char c = 'a'; c < 'h'; ++c) {
      node->setName(std::string(80, c));
      expected.insert(0, std::string(62, c));
      ASSERT_EQ(node->getName(), expected);
    }
    node->setName("short again");
    EXPECT_EQ(node->getName(), "short again");
  }
}

TEST(MenuNode, NameLengthCountsBytes) {
  std::string twoByteCharacters;
  for (int i = 0; i < 32; ++i) twoByteCharacters += "\xC3\xA9";
  MenuNode node;
  node.setName(twoByteCharacters);
  EXPECT_EQ(node.getName(), twoByteCharacters);

  MenuNode cut;
  cut.setName("x" + twoByteCharacters);
  EXPECT_EQ(cut.getName(), "x" + twoByteCharacters.substr(0, 61));  // ends within a character
}

TEST(MenuNode, NameKeepsZeroBytes) {
  using std::string_view_literals::operator""sv;
  MenuNode node;
  node.setName("a\0b"sv);
  EXPECT_EQ(node.getName(), "a\0b"sv);
}

TEST(MenuNode, NameMayBeSetFromItself) {
  MenuNode node;
  node.setName(kName64);
  node.setName(node.getName().substr(1));
  EXPECT_EQ(node.getName(), kName64.substr(1));
  node.setName(kName65);
  node.setName(node.getName());
  EXPECT_EQ(node.getName(), kName62 + kName62 + kName64.substr(1));
}

TEST(MenuNode, NameIsACopy) {
  std::string text = "before";
  MenuNode node;
  node.setName(text);
  text = "after!";
  EXPECT_EQ(node.getName(), "before");
}

TEST(MenuNode, BorrowedNameFollowsTheSameRuleInPlace) {
  MenuNode node;
  node.setBorrowedName(kName64);
  EXPECT_EQ(node.getName().data(), kName64.data());
  EXPECT_EQ(node.getName(), kName64);

  MenuNode fresh;
  fresh.setBorrowedName(kName65);
  EXPECT_EQ(fresh.getName().data(), kName65.data());
  EXPECT_EQ(fresh.getName(), kName62);

  MenuNode named;
  named.setName("abc");
  named.setBorrowedName(kName65);
  EXPECT_EQ(named.getName(), kName62 + "abc");
  named.setName("owned again");
  EXPECT_EQ(named.getName(), "owned again");
}

TEST(MenuNode, AddChildAppendsInOrder) {
  MenuNode node;
  const MenuNode& first = addMedia(node, 1, "b");
  const MenuNode& second = addMedia(node, 2, "a");
  ASSERT_EQ(node.childCount(), 2U);
  EXPECT_EQ(node.childrenBegin()[0], &first);
  EXPECT_EQ(node.childrenBegin()[1], &second);
  EXPECT_EQ(node.childrenEnd() - node.childrenBegin(), 2);
}

TEST(MenuNode, AddChildSaysWhetherItTookTheChild) {
  MenuNode node;
  EXPECT_FALSE(node.addChild(nullptr));
  EXPECT_EQ(node.childCount(), 0U);
  EXPECT_TRUE(node.addChild(std::make_unique<MenuNode>()));
  EXPECT_EQ(node.childCount(), 1U);
  EXPECT_FALSE(node.addChild(nullptr));
  EXPECT_EQ(node.childCount(), 1U);
}

TEST(MenuNode, WalkVisitsEachChildOnceAndCanBeRepeated) {
  MenuNode node;
  const std::vector<const MenuNode*> children = {&addMedia(node, 1, "a"), &addMedia(node, 2, "b"),
                                                 &addMedia(node, 3, "c")};
  for (int round = 0; round < 2; ++round) {
    std::vector<const MenuNode*> seen;
    for (auto p = node.firstChild(); node.hasMoreChildren(); p = node.nextChild()) {
      seen.push_back(*p);
    }
    EXPECT_EQ(seen, children);
    EXPECT_FALSE(node.hasMoreChildren());
  }
}

TEST(MenuNode, CursorIsAtTheFirstChildToBeginWith) {
  MenuNode node;
  addMedia(node, 1, "a");
  EXPECT_TRUE(node.hasMoreChildren());
  addMedia(node, 2, "b");
  EXPECT_EQ(node.nextChild(), node.childrenBegin() + 1);
}

TEST(MenuNode, LookingAtTheEndsLeavesTheCursor) {
  MenuNode node;
  addMedia(node, 1, "a");
  addMedia(node, 2, "b");
  node.firstChild();
  const MenuNode::Position second = node.nextChild();
  EXPECT_EQ(node.childrenBegin() + 1, second);
  EXPECT_EQ(node.childrenEnd() - 1, second);
  EXPECT_TRUE(node.hasMoreChildren());
  EXPECT_EQ(node.nextChild(), node.childrenEnd());
  EXPECT_FALSE(node.hasMoreChildren());
  EXPECT_EQ(node.nextChild(), node.childrenEnd()) << "there is nothing behind the end";
}

TEST(MenuNode, WalksOfDifferentNodesAreIndependent) {
  MenuNode node;
  MenuNode& inner = addMenu(node, 0, "inner");
  addMedia(inner, 1, "x");
  addMedia(node, 2, "y");
  std::string visited;
  for (auto p = node.firstChild(); node.hasMoreChildren(); p = node.nextChild()) {
    visited += (*p)->getName();
    for (auto q = (*p)->firstChild(); (*p)->hasMoreChildren(); q = (*p)->nextChild()) {
      visited += (*q)->getName();
    }
  }
  EXPECT_EQ(visited, "innerxy");
}

TEST(MenuNode, KeepsItsFirstChildren) {
  MenuNode node;
  for (std::uint32_t id = 1; id <= 4; ++id) addMedia(node, id, "a");
  addMedia(*node.childrenBegin()[3], 9, "beneath");
  node.firstChild();
  node.nextChild();
  node.keepChildren(4);
  EXPECT_EQ(node.childCount(), 4U);
  node.keepChildren(2);
  ASSERT_EQ(node.childCount(), 2U);
  EXPECT_EQ(node.childrenBegin()[1]->getMediaId(), 2U);
  EXPECT_TRUE(node.hasMoreChildren()) << "at the second one";
  node.keepChildren(1);
  EXPECT_FALSE(node.hasMoreChildren());
  node.keepChildren(0);
  EXPECT_EQ(node.childCount(), 0U);
  addMedia(node, 5, "later");
  EXPECT_EQ((*node.firstChild())->getMediaId(), 5U);
}

class MenuNodeFind : public ::testing::Test {
 protected:
  MenuNodeFind() {
    for (const auto& [name, id] : {std::pair{"one", 1U}, {"two", 2U}, {"two", 3U}, {"Two", 4U}}) {
      addMedia(node_, id, name);
    }
  }

  MenuNode node_;
  MenuNode::Position position_ = nullptr;
};

TEST_F(MenuNodeFind, ByNameStopsAtTheFirstMatch) {
  EXPECT_TRUE(node_.findChildByName(position_, "two"));
  EXPECT_EQ(position_, node_.childrenBegin() + 1);
  EXPECT_EQ(node_.nextChild(), node_.childrenBegin() + 2) << "the cursor was not at the match";
}

TEST_F(MenuNodeFind, ByNameMindsCaseAndLength) {
  EXPECT_TRUE(node_.findChildByName(position_, "Two"));
  EXPECT_EQ((*position_)->getMediaId(), 4U);
  EXPECT_FALSE(node_.findChildByName(position_, "TWO"));
  EXPECT_FALSE(node_.findChildByName(position_, "tw"));
  EXPECT_FALSE(node_.findChildByName(position_, "twoo"));
  EXPECT_FALSE(node_.findChildByName(position_, ""));
}

TEST_F(MenuNodeFind, ByNameEndsPastTheLastChildWithoutAMatch) {
  EXPECT_FALSE(node_.findChildByName(position_, "none"));
  EXPECT_EQ(position_, node_.childrenEnd());
  EXPECT_FALSE(node_.hasMoreChildren());
}

TEST_F(MenuNodeFind, ByNameWithoutChildrenLeavesThePosition) {
  MenuNode empty;
  MenuNode* elsewhere = &node_;
  position_ = &elsewhere;
  EXPECT_FALSE(empty.findChildByName(position_, ""));
  EXPECT_EQ(position_, &elsewhere);
  EXPECT_FALSE(empty.findChildByNameAndMediaId(position_, "", 0));
  EXPECT_EQ(position_, &elsewhere);
}

TEST_F(MenuNodeFind, ByNameAndIdNeedsBoth) {
  EXPECT_TRUE(node_.findChildByNameAndMediaId(position_, "two", 3));
  EXPECT_EQ(position_, node_.childrenBegin() + 2);
  EXPECT_TRUE(node_.hasMoreChildren());
  EXPECT_FALSE(node_.findChildByNameAndMediaId(position_, "two", 1));
  EXPECT_EQ(position_, node_.childrenEnd());
  EXPECT_FALSE(node_.findChildByNameAndMediaId(position_, "one", 2));
}

TEST_F(MenuNodeFind, MatchingChildNeedsNameAndId) {
  MenuNode other;
  other.setAll(1, 3, "two", 9, 9, 9);  // all else may differ
  EXPECT_EQ(node_.findMatchingChild(other), node_.childrenBegin()[2]);
  other.setMediaId(9);
  EXPECT_EQ(node_.findMatchingChild(other), nullptr);
  other.setMediaId(3);
  other.setName("Two");
  EXPECT_EQ(node_.findMatchingChild(other), nullptr);
  EXPECT_EQ(MenuNode().findMatchingChild(other), nullptr);
}

TEST_F(MenuNodeFind, MatchingChildResetsTheCursor) {
  node_.firstChild();
  node_.nextChild();
  node_.nextChild();
  node_.findMatchingChild(MenuNode());
  EXPECT_EQ(node_.nextChild(), node_.childrenBegin() + 1);
}

}  // namespace

}  // namespace Orvane
