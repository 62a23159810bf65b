#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "allocation_probe.h"
#include "test_support.h"
#include "tree/menu_node.h"

namespace Orvane {
namespace {

using test::addMedia;
using test::addMenu;

TEST(MenuNodeMemory, DestructionFreesEveryNodeOfEveryDepth) {
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuNode root;
    std::vector<MenuNode*> level{&root};
    for (int depth = 0; depth < 6; ++depth) {
      std::vector<MenuNode*> next;
      for (MenuNode* node : level) {
        for (int i = 0; i < 3; ++i) next.push_back(&addMenu(*node, 0, "owned name"));
        addMedia(*node, 1, std::string(65, 'n'));
      }
      level = std::move(next);
    }
    level = {};
    EXPECT_GT(test::liveAllocations(), before + 1000);
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(MenuNodeMemory, DestructionIgnoresWhereTheCursorsAre) {
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuNode root;
    MenuNode& inner = addMenu(root, 0, "inner");
    addMedia(inner, 1, "a");
    addMedia(inner, 2, "b");
    addMedia(root, 3, "c");
    for (root.firstChild(); root.hasMoreChildren();) root.nextChild();
    inner.firstChild();
    inner.nextChild();
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(MenuNodeMemory, DestructionSkipsNullEntries) {
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuNode root;
    addMedia(root, 1, "taken out");
    addMedia(root, 2, "stays");
    const std::unique_ptr<MenuNode> takenOut(std::exchange(*root.childrenBegin(), nullptr));
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(MenuNodeMemory, DeepTreeDiesWithoutRecursion) {
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuNode root;
    MenuNode* deepest = &root;
    for (int depth = 0; depth < 300'000; ++depth) deepest = &addMenu(*deepest, 0, "");
    EXPECT_GT(test::liveAllocations(), before + 300'000);
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(MenuNodeMemory, WhatIsThereAlreadyTakesNone) {
  MenuNode node;
  const std::ptrdiff_t before = test::liveAllocations();
  node.setAll(NODE_TYPE_MEDIA, 7, "", RecType::kAlbum, 3, 0);
  EXPECT_EQ(node.setSpare(0), 0U);
  node.setTrack(nullptr);
  node.setBorrowedName(std::string(65, 'n'));
  node.setBorrowedName("");
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(MenuNodeMemory, NameIsFreedWithTheNextOne) {
  MenuNode node;
  node.setName("one");
  const std::ptrdiff_t before = test::liveAllocations();
  node.setName("two");
  EXPECT_EQ(test::liveAllocations(), before);
  for (int i = 0; i < 2; ++i) {
    node.setBorrowedName("borrowed");
    EXPECT_EQ(test::liveAllocations(), before - 1);
  }
  for (int i = 0; i < 6; ++i) node.setName(std::string(65, 'n'));
  EXPECT_EQ(test::liveAllocations(), before);
  node.setName("");
  EXPECT_EQ(test::liveAllocations(), before - 1);
}

// As most menus have no more.
TEST(MenuNodeMemory, OneChildHasThePlaceOfOne) {
  MenuNode root;
  addMedia(root, 1, "only");
  auto second = std::make_unique<MenuNode>();
  const test::LimitedAllocations none(0);
  EXPECT_THROW(root.addChild(std::move(second)), std::bad_alloc);
}

TEST(MenuNodeMemory, AChildThatCannotBeFilledIsFreed) {
  MenuNode root;
  const std::ptrdiff_t before = test::liveAllocations();
  EXPECT_THROW(root.appendChild([](MenuNode&) { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_EQ(test::liveAllocations(), before);
  EXPECT_EQ(root.childCount(), 0U);
}

TEST(MenuNodeMemory, ChildrenTakenAwayAreFreed) {
  MenuNode root;
  addMedia(root, 1, "first");
  addMedia(root, 2, "second");
  const std::ptrdiff_t before = test::liveAllocations();
  addMedia(addMenu(root, 3, "third"), 4, "beneath it");
  ASSERT_GT(test::liveAllocations(), before + 2);
  root.keepChildren(2);
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST(MenuNodeMemory, RunningOutInAddChildLosesNothing) {
  const std::ptrdiff_t before = test::liveAllocations();
  int failures = 0;
  bool complete = false;
  for (int allowed = 0; !complete; ++allowed) {
    ASSERT_LT(allowed, 100);
    MenuNode root;
    try {
      const test::LimitedAllocations limit(allowed);
      addMedia(root, 1, "first");
      addMedia(addMenu(root, 0, "menu"), 2, "second");
      complete = true;
    } catch (const std::bad_alloc&) {
      ++failures;
    }
  }
  EXPECT_GT(failures, 5);
  EXPECT_EQ(test::liveAllocations(), before);
}

}  // namespace
}  // namespace Orvane
