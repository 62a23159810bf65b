// Files with few signs of what they are, tables in unusual places, and texts at the edges of what
// may be shown.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory_image.h"
#include "reader/inventory_view.h"
#include "reader/text_escape.h"
#include "reader/tree_diff.h"
#include "reader/tree_walk.h"
#include "skein/exit_status.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

Sketch threeSongs() {
  return menu("Home", {media("One", 1), media("Two", 2), media("Three", 3)});
}

// Fields of descriptors, by table.
constexpr std::size_t kOffsetField = 4;
constexpr std::size_t kCountField = 8;
constexpr std::size_t kSizeField = 12;

std::size_t descriptor(std::size_t table) {
  return kFileHeaderSize + table * kTableDescriptorSize;
}

TEST(OddFiles, CountOfTablesDecidesWhenTheOtherSignsDisagree) {
  InventoryImage one(Layout::kOneTable, threeSongs());
  one.byte(descriptor(0), 1).number(descriptor(0) + kSizeField, 0);
  EXPECT_EQ(viewOf(one).layout(), Layout::kOneTable);
  InventoryImage two(Layout::kTwoTable, threeSongs());
  two.byte(descriptor(0), 3).number(descriptor(0) + kSizeField, 0);
  EXPECT_EQ(viewOf(two).layout(), Layout::kTwoTable);
}

TEST(OddFiles, WithoutAnySignOfALayoutThereIsNoInventory) {
  InventoryImage image(Layout::kOneTable, threeSongs());
  image.number(8, 5).byte(descriptor(0), 9).number(descriptor(0) + kSizeField, 0);
  std::string reason;
  EXPECT_FALSE(InventoryView::open(image.bytes(), reason).has_value());
  EXPECT_EQ(reason, "not an inventory: it does not begin with an inventory's file header");
}

TEST(OddFiles, OneTableHasOneDescriptor) {
  const InventoryImage image(Layout::kOneTable, threeSongs());
  EXPECT_TRUE(viewOf(image).descriptor(0).has_value());
  EXPECT_FALSE(viewOf(image).descriptor(1).has_value());
}

TEST(OddFiles, CountIsProvenOnlyByAWholeNumberOfRecords) {
  InventoryImage image(Layout::kTwoTable, threeSongs());
  const std::size_t dataOffset = image.itemOffset(0);
  // All agrees but for one byte too much before the data table.
  image.number(descriptor(1) + kOffsetField, static_cast<std::uint32_t>(dataOffset) + 1);
  image.number(descriptor(0) + kCountField, 2).append("x");
  EXPECT_EQ(viewOf(image).statedCount(0), 2U);
}

// Turns a sound file around: the data table comes first, then the tree table. What follows keeps
// the file's length from being the one that the usual order would have.
InventoryImage turnedAround(std::uint32_t dataCount, std::string_view end) {
  InventoryImage image(Layout::kTwoTable, threeSongs());
  const auto bytes = image.bytes();
  const std::string tree(bytes.begin() + 48, bytes.begin() + 96);
  const std::string data(bytes.begin() + 96, bytes.end());
  image.cutTo(48).append(data).append(tree).append(end);
  image.number(descriptor(0) + kOffsetField, static_cast<std::uint32_t>(48 + data.size()));
  image.number(descriptor(1) + kOffsetField, 48);
  return image.number(descriptor(1) + kCountField, dataCount);
}

TEST(OddFiles, TreeTableMayStandBehindTheDataTable) {
  const InventoryImage image = turnedAround(4, "end");
  const InventoryView view = viewOf(image);
  EXPECT_GT(view.tableOffset(0), view.tableOffset(1));
  ASSERT_EQ(view.recordCount(), 4U);
  EXPECT_EQ(view.itemOf(3).name(), "Three");
  const VerbResult result = annotateOf(image.bytes());
  EXPECT_LT(result.out.find("data record 3, of record 3 (/Three)"),
            result.out.find("tree record 0 (/)"));
  EXPECT_EQ(checkOf(image.bytes()).status, kStatusNo) << "it is readable, but not as written";
}

// The fifth data record is made of the tree table and some of what follows. None of that is shown
// once more.
TEST(OddFiles, DataTableMayRunIntoTheTreeTableBehindIt) {
  const InventoryImage image = turnedAround(5, std::string(100, 'x'));
  const VerbResult result = annotateOf(image.bytes());
  EXPECT_THAT(result.out, HasSubstr("data record 4"));
  EXPECT_THAT(result.out, Not(HasSubstr("firstChildIndex")));
}

TEST(OddFiles, EmptyDataTableBehindTheEndIsNoOverlap) {
  InventoryImage image(Layout::kTwoTable, threeSongs());
  // Not at the end of a record: that would prove how many there are.
  const auto size = static_cast<std::uint32_t>(image.recordOffset(2)) + 5;
  image.cutTo(size);
  image.number(descriptor(1) + kOffsetField, size).number(descriptor(1) + kCountField, 0);
  EXPECT_THAT(checkOf(image.bytes()).out, Not(HasSubstr("[table-overlap]")));
  image.number(descriptor(1) + kCountField, 1);
  EXPECT_THAT(checkOf(image.bytes()).out, HasSubstr("[table-overlap]"));
}

TEST(OddFiles, LonePlaylistsMenuAtTheEndIsNotDisplaced) {
  InventoryImage image(Layout::kTwoTable, menu("Home", {menu("Playlists", {media("One", 1)})}));
  image.firstChild(1, 0).cutTo(image.itemOffset(0));
  EXPECT_THAT(annotateOf(image.bytes()).out, Not(HasSubstr("contents not stored")));
  // The last record, too, has no sibling that would displace it.
  InventoryImage last(Layout::kTwoTable, menu("Home", {media("One", 1), menu("Playlists")}));
  last.firstChild(2, 0).childCount(2, 1);
  EXPECT_THAT(annotateOf(last.bytes()).out, Not(HasSubstr("contents not stored")));
}

TEST(OddFiles, OneTableStoresTheContentsOfAllPlaylistsMenus) {
  const Sketch tree = menu("Home", {menu("Playlists", {media("One", 1)}), menu("Playlists")});
  InventoryImage one(Layout::kOneTable, tree);
  one.firstChild(1, 0);
  EXPECT_FALSE(TreeIndex(viewOf(one)).isDisplaced(1));
  const InventoryImage two(Layout::kTwoTable, tree);
  EXPECT_TRUE(TreeIndex(viewOf(two)).isDisplaced(1));
  EXPECT_FALSE(TreeIndex(viewOf(two)).isDisplaced(2));
  InventoryImage leaf(Layout::kTwoTable, tree);
  leaf.firstChild(1, kNoChildren);
  EXPECT_FALSE(TreeIndex(viewOf(leaf)).isDisplaced(1));
}

TEST(OddFiles, OnlySiblingsOfTheSameNameDisplaceAMenu) {
  InventoryImage other(Layout::kTwoTable, menu("Home", {menu("A"), menu("Playlists")}));
  other.firstChild(1, 0);
  EXPECT_FALSE(TreeIndex(viewOf(other)).isDisplaced(1));
  const Sketch playlists = menu("Playlists");
  InventoryImage cousins(Layout::kTwoTable,
                         menu("Home", {menu("A", {playlists}), menu("B", {playlists})}));
  cousins.firstChild(3, 0);
  EXPECT_FALSE(TreeIndex(viewOf(cousins)).isDisplaced(3));
}

TEST(OddFiles, WalkThatHasEndedStaysAtItsEnd) {
  const InventoryImage image(Layout::kTwoTable, threeSongs());
  const InventoryView view = viewOf(image);
  TreeWalk walk(view);
  while (walk.next() != TreeWalk::Event::kEnd) {
  }
  EXPECT_EQ(walk.next(), TreeWalk::Event::kEnd);
  EXPECT_EQ(walk.next(), TreeWalk::Event::kEnd);
}

TEST(OddFiles, InventoriesWithoutRecordsAreCompared) {
  const InventoryImage some(Layout::kOneTable, threeSongs());
  InventoryImage none(Layout::kOneTable, threeSongs());
  none.number(descriptor(0) + kCountField, 0).cutTo(32);
  const auto changes = [](const InventoryImage& a, const InventoryImage& b) {
    const InventoryView first = viewOf(a);
    const InventoryView second = viewOf(b);
    const TreeIndex left(first);
    const TreeIndex right(second);
    std::vector<Change> found;
    for (const Difference& difference : TreeDiff(left, right).run()) {
      found.push_back(difference.change);
    }
    return found;
  };
  EXPECT_TRUE(TreeIndex(viewOf(none)).damaged());
  EXPECT_FALSE(TreeIndex(viewOf(some)).damaged());
  EXPECT_EQ(changes(none, none), std::vector<Change>{});
  EXPECT_EQ(changes(none, some), std::vector<Change>{Change::kAdded});
  EXPECT_EQ(changes(some, none), std::vector<Change>{Change::kRemoved});
}

TEST(OddFiles, WidestMenusAreFoundWhereverTheyStand) {
  std::vector<Sketch> menus;
  for (std::size_t i = 1; i <= 8; ++i) {
    menus.push_back(menu("M" + std::to_string(i), std::vector<Sketch>(i * 10, media("x", 1))));
  }
  for (const bool reversed : {false, true}) {
    if (reversed) std::reverse(menus.begin(), menus.end());
    const InventoryImage image(Layout::kOneTable, menu("Home", menus));
    std::string out = statsOf(image.bytes()).out;
    out.erase(0, out.find("widest menus"));
    for (const char* const wide : {"M8", "M7", "M6", "M5", "M4"}) EXPECT_THAT(out, HasSubstr(wide));
    for (const char* const narrow : {"M3", "M2", "M1"}) EXPECT_THAT(out, Not(HasSubstr(narrow)));
  }
}

TEST(OddTexts, MarksOfDirectionAreNotShown) {
  const auto text = [](std::uint8_t last) { return std::string("\xE2\x81") + char(last); };
  EXPECT_EQ(escaped(text(0xA5)), text(0xA5));
  EXPECT_EQ(escaped(text(0xA6)), "\\xE2\\x81\\xA6");
  EXPECT_EQ(escaped(text(0xA9)), "\\xE2\\x81\\xA9");
  EXPECT_EQ(escaped(text(0xAA)), text(0xAA));
}

TEST(OddTexts, OnlyHexadecimalDigitsMakeABytesEscape) {
  EXPECT_EQ(unescaped("\\x09\\xAF\\xaf\\x90"), "\x09\xAF\xAF\x90");
  for (const char* const bad : {"\\x/0", "\\x:0", "\\x@0", "\\xG0", "\\x`0", "\\xg0", "\\x0/",
                                "\\x0:", "\\x0@", "\\x0G", "\\x0`", "\\x0g"}) {
    EXPECT_FALSE(unescaped(bad).has_value()) << bad;
  }
}

TEST(OddTexts, CharactersThatXmlLacksAreReplaced) {
  const auto xmlOf = [](const std::string& name) {
    return decompileOf(InventoryImage(Layout::kTwoTable, menu(name)).bytes()).out;
  };
  EXPECT_THAT(xmlOf("a\xEF\xBF\xBE"), HasSubstr("\"a\xEF\xBF\xBD\""));
  EXPECT_THAT(xmlOf("a\xEF\xBF\xBF"), HasSubstr("\"a\xEF\xBF\xBD\""));
  EXPECT_THAT(xmlOf("a\xEF\xBF\xBC"), HasSubstr("\"a\xEF\xBF\xBC\""));
}

TEST(OddTexts, OneOfAKindIsNamedInTheSingular) {
  // A leaf's count of one child that isn't stored, beyond what the XML can make up for.
  InventoryImage many(Layout::kTwoTable, menu("Home", {media("One", 1), media("Two", 2)}));
  many.childCount(1, 1'000'000).childCount(2, 1);
  EXPECT_THAT(decompileOf(many.bytes()).messages,
              HasSubstr("a count of 1 child that is not stored needs more than 1000000 empty"));
}

}  // namespace
}  // namespace Orvane
