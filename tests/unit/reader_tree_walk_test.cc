#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inventory_image.h"
#include "reader/tree_walk.h"
#include "verb_runner.h"
#include "written_inventory.h"

namespace Orvane {
namespace {

// The walk in short: "0(1(2)3)" for a root with two children of which the first has one. Records
// whose range is wrong are followed by C (cycle), S (shared), O (overlap), R (out of range) or
// D (displaced).
std::string shapeOf(const InventoryView& view, WalkOrder order = WalkOrder::kMenu,
                    std::uint32_t start = 0) {
  TreeWalk walk(view, order, start);
  std::string shape;
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event == TreeWalk::Event::kLeave) {
      shape += ')';
      continue;
    }
    const TreeWalk::Visit& visit = walk.current();
    if (!shape.empty() && shape.back() != '(' && shape.back() != ')') shape += ' ';
    shape += std::to_string(visit.record);
    if (visit.conflict == TreeWalk::Conflict::kCycle) shape += 'C';
    if (visit.conflict == TreeWalk::Conflict::kShared) shape += 'S';
    if (visit.conflict == TreeWalk::Conflict::kOverlap) shape += 'O';
    if (visit.outOfRange) shape += 'R';
    if (visit.displaced) shape += 'D';
    if (visit.used != 0) shape += '(';
  }
  return shape;
}

class TreeWalkOfLayout : public testing::TestWithParam<Layout> {};

INSTANTIATE_TEST_SUITE_P(Layouts, TreeWalkOfLayout,
                         testing::Values(Layout::kOneTable, Layout::kTwoTable));

TEST_P(TreeWalkOfLayout, VisitsParentsBeforeChildren) {
  EXPECT_EQ(shapeOf(viewOf(InventoryImage(GetParam(), menu("Home")))), "0");
  const InventoryImage image(GetParam(), sampleTree());
  EXPECT_EQ(shapeOf(viewOf(image)), "0(1(4(5 6))2(7 8 9)3)");
}

TEST_P(TreeWalkOfLayout, KnowsDepthsAndParents) {
  const InventoryImage image(GetParam(), sampleTree());
  TreeWalk walk(viewOf(image));
  std::vector<std::uint32_t> depths(image.recordCount(), 99);
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event == TreeWalk::Event::kEnter) depths[walk.current().record] = walk.current().depth;
  }
  EXPECT_EQ(depths, (std::vector<std::uint32_t>{0, 1, 1, 1, 2, 3, 3, 2, 2, 2}));
  const std::vector<std::uint32_t> parents = walk.takeParents();
  EXPECT_EQ(parents, (std::vector<std::uint32_t>{TreeWalk::kStart, 0, 0, 0, 1, 4, 4, 2, 2, 2}));
}

TEST_P(TreeWalkOfLayout, IsOverAtOnceWithoutAStart) {
  InventoryImage image(GetParam(), sampleTree());
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kMenu, 10), "");
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kMenu, 0xFFFFFFFF), "");
  image.number(24, 0).append("x");
  EXPECT_EQ(shapeOf(viewOf(image)), "");
}

TEST_P(TreeWalkOfLayout, StartsWhereItIsTold) {
  const InventoryImage image(GetParam(), sampleTree());
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kMenu, 1), "1(4(5 6))");
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kMenu, 5), "5");
}

TEST_P(TreeWalkOfLayout, DoesNotMistakeTheStartForASibling) {
  // Record 2 claims record 1, the one before it, as its only child.
  InventoryImage image(GetParam(), menu("Home", {menu("A"), menu("B")}));
  image.firstChild(2, 1).childCount(2, 1);
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kMenu, 2), "2(1)");
}

TEST_P(TreeWalkOfLayout, CanLeaveOutChildren) {
  const InventoryImage image(GetParam(), sampleTree());
  TreeWalk walk(viewOf(image));
  std::vector<std::uint32_t> seen;
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event != TreeWalk::Event::kEnter) continue;
    seen.push_back(walk.current().record);
    if (walk.current().record == 1) walk.skipChildren();
  }
  EXPECT_EQ(seen, (std::vector<std::uint32_t>{0, 1, 2, 7, 8, 9, 3}));
}

TEST_P(TreeWalkOfLayout, LooksAtTheCountBeforeTheIndex) {
  for (const std::uint32_t anywhere : {0U, 1U, 3U, 10U, 0x80000000U, 0xFFFFFFFEU}) {
    InventoryImage image(GetParam(), sampleTree());
    image.firstChild(3, anywhere);
    EXPECT_EQ(shapeOf(viewOf(image)), "0(1(4(5 6))2(7 8 9)3)") << anywhere;
  }
}

TEST_P(TreeWalkOfLayout, TakesLeavesWithAChildCount) {
  InventoryImage image(GetParam(), sampleTree());
  image.childCount(8, 0xFFFFFFFF);
  EXPECT_EQ(shapeOf(viewOf(image)), "0(1(4(5 6))2(7 8 9)3)");
}

TEST_P(TreeWalkOfLayout, StopsAtCycles) {
  InventoryImage self(GetParam(), sampleTree());
  self.firstChild(4, 4);
  EXPECT_EQ(shapeOf(viewOf(self)), "0(1(4C)2(7 8 9)3)");
  InventoryImage ancestor(GetParam(), sampleTree());
  ancestor.firstChild(4, 1);
  EXPECT_EQ(shapeOf(viewOf(ancestor)), "0(1(4C)2(7 8 9)3)");
  InventoryImage root(GetParam(), sampleTree());
  root.firstChild(2, 0).childCount(2, 1);
  EXPECT_EQ(shapeOf(viewOf(root)), "0(1(4(5 6))2C 3)");
}

TEST_P(TreeWalkOfLayout, VisitsSharedChildrenOnce) {
  InventoryImage image(GetParam(), sampleTree());
  image.firstChild(2, 5).childCount(2, 2);
  EXPECT_EQ(shapeOf(viewOf(image)), "0(1(4(5 6))2S 3)");
}

TEST_P(TreeWalkOfLayout, StopsWhereFamiliesOverlap) {
  InventoryImage image(GetParam(), sampleTree());
  image.childCount(4, 3);
  EXPECT_EQ(shapeOf(viewOf(image)), "0(1(4(5 6 7))2O 3)");
  InventoryImage backwards(GetParam(), sampleTree());
  backwards.firstChild(2, 6);
  EXPECT_EQ(shapeOf(viewOf(backwards)), "0(1(4(5 6))2O 3)");
}

TEST_P(TreeWalkOfLayout, TakesNothingFromARangeOutsideTheTable) {
  for (const std::uint32_t count : {4U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    InventoryImage image(GetParam(), sampleTree());
    image.childCount(2, count);
    EXPECT_EQ(shapeOf(viewOf(image)), "0(1(4(5 6))2R 3)") << count;
  }
  InventoryImage far(GetParam(), sampleTree());
  far.firstChild(2, 0xFFFFFFFE);
  EXPECT_EQ(shapeOf(viewOf(far)), "0(1(4(5 6))2R 3)");
}

TEST_P(TreeWalkOfLayout, TakesTheChildrenThatACutOffFileStillHas) {
  InventoryImage image(GetParam(), sampleTree());
  image.cutTo(image.recordOffset(8) + 3);
  EXPECT_EQ(shapeOf(viewOf(image)), "0(1(4(5 6))2R(7)3)");
}

TEST_P(TreeWalkOfLayout, EndsWhenEveryMenuClaimsEverything) {
  std::vector<Sketch> many(2000, menu("A"));
  InventoryImage image(GetParam(), menu("Home", many));
  for (std::uint32_t i = 1; i <= 2000; ++i) image.firstChild(i, 1).childCount(i, 2000);
  TreeWalk walk(viewOf(image));
  std::size_t visits = 0;
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event == TreeWalk::Event::kEnter) ++visits;
  }
  EXPECT_EQ(visits, 2001U);
}

TEST(TreeWalk, KnowsDisplacedPlaylists) {
  const Sketch root =
      menu("Home", {menu("Playlists", {media("X", 1)}), menu("A", {media("Y", 2)}),
                    menu("Playlists", {media("Z", 3)}), menu("B", {media("W", 4)})});
  const InventoryImage two(Layout::kTwoTable, root);
  EXPECT_EQ(shapeOf(viewOf(two)), "0(1D 2(5)3(7)4(6))");
  EXPECT_EQ(shapeOf(viewOf(two), WalkOrder::kStorage), "0(1D 2(5)4(6)3(7))");

  // With one table every menu's contents are stored, so the same bytes are a cycle there.
  InventoryImage one(Layout::kOneTable, root);
  EXPECT_EQ(shapeOf(viewOf(one)), "0(1(5)2(6)3(7)4(8))");
  one.firstChild(1, 0);
  EXPECT_EQ(shapeOf(viewOf(one)), "0(1C 2(6)3(7)4(8))");
}

// The first entry's type is what both menus of its name and id show in the file.
TEST(TreeWalk, KnowsDisplacedPlaylistsThatShareAnotherType) {
  MenuTree tree;
  const auto add = [](MenuNode& parent, std::string_view name, std::uint32_t recType) -> MenuNode& {
    return parent.appendChild(
        [&](MenuNode& node) { node.setAll(NODE_TYPE_MENU, 0, name, recType, 0, 0); });
  };
  add(*tree.getRoot(), "Playlists", 6);
  add(add(*tree.getRoot(), "Playlists", 7), "X", 7);
  add(add(*tree.getRoot(), "Playlists", 7), "Y", 7);
  const auto bytes = written(tree, Layout::kTwoTable);
  EXPECT_EQ(shapeOf(viewOf(bytes)), "0(1 2D 3(4))");
  EXPECT_EQ(checkOf(bytes).out, "");
  EXPECT_EQ(decompileOf(bytes).status, 1);
}

TEST(TreeWalk, TakesALonePlaylistsMenuForDamagedWhenItsIndexIsZero) {
  InventoryImage image(Layout::kTwoTable, menu("Home", {menu("Playlists", {media("X", 1)})}));
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kStorage), "0(1(2))");
  image.firstChild(1, 0);
  EXPECT_EQ(shapeOf(viewOf(image)), "0(1C)");
}

TEST(TreeWalk, StorageOrderIsThatOfTheMenuWithOneTable) {
  const Sketch root = menu("Home", {menu("Playlists", {media("X", 1)}), menu("A")});
  const InventoryImage image(Layout::kOneTable, root);
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kStorage), "0(1(3)2)");
}

// A menu whose children are left out has none to put off either.
TEST(TreeWalk, StorageOrderCanLeaveOutChildren) {
  const Sketch inner = menu("A", {menu("Playlists", {media("X", 1)}), menu("B")});
  const InventoryImage image(Layout::kTwoTable, menu("Home", {menu("Playlists"), inner}));
  TreeWalk walk(viewOf(image), WalkOrder::kStorage);
  std::vector<std::uint32_t> seen;
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event != TreeWalk::Event::kEnter) continue;
    seen.push_back(walk.current().record);
    if (walk.current().record == 2) walk.skipChildren();
  }
  EXPECT_EQ(seen, (std::vector<std::uint32_t>{0, 2, 1}));
}

TEST(TreeWalk, StorageOrderHoldsOnEveryLevel) {
  const Sketch inner = menu("A", {menu("Playlists", {media("X", 1)}), menu("B", {media("Y", 2)})});
  const InventoryImage image(Layout::kTwoTable,
                             menu("Home", {menu("Playlists", {inner}), menu("C", {inner})}));
  // 1 Playlists, 2 C; C's family comes first.
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kStorage), "0(2(3(5(6)4(7)))1(8(10(11)9(12))))");
  EXPECT_EQ(shapeOf(viewOf(image), WalkOrder::kMenu), "0(1(8(9(12)10(11)))2(3(4(7)5(6))))");
}

TEST(TreeWalk, FollowsAChainOfAMillion) {
  constexpr std::uint32_t kLength = 1000000;
  InventoryImage image(Layout::kOneTable, menu("Home"));
  image.number(24, kLength).firstChild(0, 1).childCount(0, 1);
  std::string record(80, '\0');
  record[4] = 1;
  std::string records;
  for (std::uint32_t i = 1; i < kLength; ++i) {
    for (std::size_t k = 0; k < 4; ++k) record[k] = static_cast<char>((i + 1) >> (8 * k));
    if (i + 1 == kLength) record[4] = 0;
    records += record;
  }
  image.append(records);
  TreeWalk walk(viewOf(image));
  std::uint32_t deepest = 0;
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    deepest = std::max(deepest, walk.current().depth);
  }
  EXPECT_EQ(deepest, kLength - 1);
}

}  // namespace
}  // namespace Orvane
