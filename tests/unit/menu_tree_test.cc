#include "tree/menu_tree.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

#include "allocation_probe.h"
#include "test_support.h"

namespace Orvane {
namespace {

TEST(MenuTree, RootIsAPlainMenuNamedRoot) {
  const MenuTree tree;
  ASSERT_NE(tree.getRoot(), nullptr);
  EXPECT_EQ(test::describeNode(*tree.getRoot()), "1 0 'root' 7 0 0");
  EXPECT_EQ(tree.getRoot()->childCount(), 0U);
  EXPECT_EQ(tree.getRoot()->getTrack(), nullptr);
}

TEST(MenuTree, RootIsRenamedByTheNameRule) {
  MenuTree tree;
  tree.getRoot()->setName(std::string(70, 'n'));
  EXPECT_EQ(tree.getRoot()->getName(), std::string(62, 'n') + "root");
}

TEST(MenuTree, AddChildHangsTheChildUnderTheParent) {
  MenuTree tree;
  auto menu = std::make_unique<MenuNode>();
  MenuNode* const menuNode = menu.get();
  EXPECT_TRUE(tree.addChild(tree.getRoot(), std::move(menu)));
  auto leaf = std::make_unique<MenuNode>();
  const MenuNode* const leafNode = leaf.get();
  EXPECT_TRUE(tree.addChild(menuNode, std::move(leaf)));

  ASSERT_EQ(tree.getRoot()->childCount(), 1U);
  EXPECT_EQ(*tree.getRoot()->childrenBegin(), menuNode);
  ASSERT_EQ(menuNode->childCount(), 1U);
  EXPECT_EQ(*menuNode->childrenBegin(), leafNode);
}

TEST(MenuTree, AddChildRefusesNullChild) {
  MenuTree tree;
  EXPECT_FALSE(tree.addChild(tree.getRoot(), nullptr));
  EXPECT_EQ(tree.getRoot()->childCount(), 0U);
}

TEST(MenuTree, AddChildRefusesNullParent) {
  const std::ptrdiff_t before = test::liveAllocations();
  MenuTree tree;
  const std::ptrdiff_t withTree = test::liveAllocations();
  EXPECT_GT(withTree, before);
  EXPECT_FALSE(tree.addChild(nullptr, std::make_unique<MenuNode>()));
  EXPECT_FALSE(tree.addChild(nullptr, nullptr));
  EXPECT_EQ(test::liveAllocations(), withTree);
  EXPECT_EQ(tree.getRoot()->childCount(), 0U);
}

TEST(MenuTree, AddChildToRoot) {
  MenuTree tree;
  EXPECT_FALSE(tree.addChildToRoot(nullptr));
  EXPECT_EQ(tree.getRoot()->childCount(), 0U);
  auto child = std::make_unique<MenuNode>();
  const MenuNode* const node = child.get();
  EXPECT_TRUE(tree.addChildToRoot(std::move(child)));
  ASSERT_EQ(tree.getRoot()->childCount(), 1U);
  EXPECT_EQ(*tree.getRoot()->childrenBegin(), node);
}

TEST(MenuTree, DestructionFreesEverything) {
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuTree tree;
    MenuNode* deepest = tree.getRoot();
    for (int i = 0; i < 50; ++i) {
      test::addMedia(*deepest, 1, "leaf");
      deepest = &test::addMenu(*deepest, 0, "menu");
    }
    EXPECT_GT(test::liveAllocations(), before + 100);
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(MenuTree, SubtreesApartNeedNoTable) {
  MenuTree tree;
  MenuNode& apart = tree.appendApart();
  EXPECT_EQ(apart.getTrackTable(), nullptr);
  EXPECT_EQ(tree.getRoot()->childrenBegin()[0], &apart);
}

TEST(MenuTree, SubtreesApartArePartOfTheTree) {
  MenuTree tree;
  Track track;
  track.setMediaId(5);
  track.setTitle("title");
  TrackTable tracks;
  test::addTracks(tracks, {&track});
  tree.setTrackTable(tracks);
  test::addMenu(*tree.getRoot(), 1, "first");
  MenuNode& apart = tree.appendApart();
  EXPECT_EQ(test::describeNode(apart), "0 0 '' 0 0 0");
  apart.setName("apart");
  apart.appendLeaf(tracks, 1);
  EXPECT_FALSE(apart.childAt(0).isNode());
  test::addMedia(apart, 6, "adopted");
  EXPECT_EQ(tree.nodeCountHint(), 3U);
  ASSERT_EQ(tree.getRoot()->childCount(), 2U);
  EXPECT_EQ(tree.getRoot()->childrenBegin()[1], &apart);
  EXPECT_EQ(apart.getTrackTable(), &tracks);
  EXPECT_EQ(test::describeNode(**apart.childrenBegin()), "2 5 'title' 0 0 0");
}

}  // namespace
}  // namespace Orvane
