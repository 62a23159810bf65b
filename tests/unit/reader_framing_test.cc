// Headers with more than one fault, and tables that stand elsewhere than a writer puts them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "inventory_image.h"
#include "reader/inventory_view.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// Offsets of fields, in bytes from the start of the file.
constexpr std::size_t kFirstOffset = 20;
constexpr std::size_t kFirstCount = 24;
constexpr std::size_t kSecondOffset = 36;
constexpr std::size_t kSecondCount = 40;

InventoryImage one() {
  return {Layout::kOneTable, sampleTree()};
}
InventoryImage two() {
  return {Layout::kTwoTable, sampleTree()};
}

// Moves what begins at `offset` further on by `gap` bytes of filler.
InventoryImage& makeRoom(InventoryImage& image, std::size_t offset, std::size_t gap) {
  const auto all = image.bytes();
  const std::string rest(all.begin() + static_cast<long>(offset), all.end());
  return image.cutTo(offset).append(std::string(gap, '#')).append(rest);
}

std::string checked(const InventoryImage& image) {
  return checkOf(image.bytes()).out;
}

class FramingOfLayout : public testing::TestWithParam<Layout> {
 protected:
  InventoryImage image() const { return {GetParam(), sampleTree()}; }
};
INSTANTIATE_TEST_SUITE_P(Layouts, FramingOfLayout,
                         testing::Values(Layout::kOneTable, Layout::kTwoTable));

TEST_P(FramingOfLayout, TwoWrongHeaderFieldsAreOneTooMany) {
  constexpr std::array<std::size_t, 6> kFields = {0, 1, 2, 4, 8, 12};
  for (const std::size_t first : kFields) {
    for (const std::size_t second : kFields) {
      InventoryImage damaged = image();
      damaged.byte(first, 0x77).byte(second, 0x77);
      std::string reason;
      EXPECT_EQ(InventoryView::open(damaged.bytes(), reason).has_value(), first == second)
          << first << " and " << second;
    }
  }
}

// The bytes behind the end, which would say otherwise, are not looked at.
TEST_P(FramingOfLayout, HeaderAloneTellsTheLayoutByItsCount) {
  InventoryImage misleading = image();
  const bool isOne = GetParam() == Layout::kOneTable;
  misleading.byte(16, isOne ? 1 : 3).byte(28, isOne ? 12 : 80);
  for (std::size_t size = kFileHeaderSize; size < kFileHeaderSize + kTableDescriptorSize; ++size) {
    const InventoryView view = viewOf(misleading.bytes().first(size));
    EXPECT_EQ(view.layout(), GetParam());
    EXPECT_EQ(view.statedCount(0), 0U);
    EXPECT_EQ(view.recordCount(), 0U);
  }
}

TEST(Framing, WithoutItsSecondDescriptorATwoTableFileHasNoRecords) {
  const InventoryImage image = two();
  for (std::size_t size = 32; size < 48; ++size) {
    const InventoryView view = viewOf(image.bytes().first(size));
    EXPECT_EQ(view.recordCount(), 0U);
    EXPECT_EQ(view.dataCount(), 0U);
    EXPECT_EQ(view.statedCount(1), 0U);
  }
}

TEST(Framing, CombinedTableMayStandFurtherOn) {
  InventoryImage image = one();
  makeRoom(image, 32, 200).number(kFirstOffset, 232);
  const InventoryView view = viewOf(image);
  EXPECT_EQ(view.tableOffset(0), 232U);
  EXPECT_EQ(view.itemOf(0).name(), "Home");
  const std::string explained = annotateOf(image.bytes()).out;
  EXPECT_THAT(explained, HasSubstr("bytes outside the records"));
  EXPECT_THAT(explained, HasSubstr("node record 0 (/)"));
  EXPECT_THAT(explained, Not(HasSubstr("data record")));
}

TEST(Framing, CombinedTableIsBelievedOnlyWhereItFits) {
  for (const auto& [stated, expected] :
       {std::pair{0U, 32U}, {31U, 32U}, {32U, 32U}, {33U, 33U}, {34U, 32U}, {0xFFFFFFFFU, 32U}}) {
    InventoryImage image = one();
    image.append("x").number(kFirstOffset, stated);
    EXPECT_EQ(viewOf(image).tableOffset(0), expected) << stated;
  }
}

TEST(Framing, TreeTableIsBelievedOnlyWhereItFits) {
  const auto fits = static_cast<std::uint32_t>(two().size() + 5 - two().recordCount() * 12);
  for (const auto& [stated, expected] : {std::pair{10U, 48U},
                                         {47U, 48U},
                                         {49U, 49U},
                                         {fits, fits},
                                         {fits + 1, 48U},
                                         {0xFFFFFFFFU, 48U}}) {
    InventoryImage image = two();
    const std::size_t data = image.itemOffset(0);
    makeRoom(image, data, 5)
        .number(kSecondOffset, static_cast<std::uint32_t>(data) + 5)
        .number(kFirstOffset, stated);
    EXPECT_EQ(viewOf(image).tableOffset(0), expected) << stated;
    EXPECT_EQ(viewOf(image).item(0).name(), "Home") << stated;
  }
  // Where all else is as a writer leaves it, the table is, too.
  InventoryImage sound = two();
  sound.number(kFirstOffset, 60);
  EXPECT_EQ(viewOf(sound).tableOffset(0), 48U);
}

TEST(Framing, DataTableOutsideTheFileIsSoughtBehindTheTree) {
  for (const std::uint32_t stated : {0U, 47U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    InventoryImage image = two();
    image.append("x").number(kSecondOffset, stated);
    EXPECT_EQ(viewOf(image).item(0).name(), "Home") << stated;
  }
}

TEST(Framing, DataTableThatLeavesNoRoomProvesNoCount) {
  InventoryImage image(Layout::kTwoTable, menu("Home"));
  image.cutTo(48 + 72).number(kSecondOffset, 48);
  EXPECT_EQ(viewOf(image).statedCount(0), 1U);
}

TEST(Framing, CountOfATreeTableThatWasMovedStands) {
  InventoryImage image = two();
  const auto data = static_cast<std::uint32_t>(image.itemOffset(0));
  makeRoom(image, 48, 12).number(kFirstOffset, 60).number(kSecondOffset, data + 12);
  const InventoryView view = viewOf(image);
  EXPECT_EQ(view.statedCount(0), two().recordCount());
  EXPECT_EQ(view.itemOf(0).name(), "Home");
}

TEST(Framing, OffsetBeyond32BitsIsStatedByItsLowHalf) {
  InventoryImage image = two();
  // The tree table ends at 48 + 0x20000000 * 12.
  image.number(kFirstCount, 0x20000000).number(kSecondOffset, 0x80000030);
  EXPECT_THAT(checked(image), Not(HasSubstr("[table-offset]")));
  image.number(kSecondOffset, 0x80000031);
  EXPECT_THAT(checked(image), HasSubstr("[table-offset]"));
}

TEST(Framing, EmptyDataTableInsideTheTreeTableIsAnOverlap) {
  InventoryImage image = two();
  image.number(kFirstCount, 11).number(kSecondCount, 0).append("x");
  EXPECT_THAT(checked(image), HasSubstr("[table-overlap]"));
}

TEST(Framing, TablesThatBeginTogetherAreMeasuredBySize) {
  InventoryImage image = two();
  image.number(kSecondOffset, 48).number(kFirstCount, 1000).append("x");
  EXPECT_THAT(checked(image), HasSubstr("within the tree table"));
}

TEST(Framing, TreeTableBehindTheDataTableIsTheLast) {
  InventoryImage image = two();
  const auto all = image.bytes();
  const auto data = static_cast<long>(image.itemOffset(0));
  const std::string tree(all.begin() + 48, all.begin() + data);
  const std::string items(all.begin() + data, all.end());
  image.cutTo(48).append(items).append(tree).append("end");
  image.number(kFirstOffset, static_cast<std::uint32_t>(48 + items.size()));
  image.number(kSecondOffset, 48);
  EXPECT_THAT(checked(image), HasSubstr(": 3 bytes follow the last table"));
  EXPECT_THAT(checked(image), Not(HasSubstr("[table-overlap]")));
}

TEST(InventoryCheckOfItems, OneTableHasNoUnusedData) {
  InventoryImage image(Layout::kOneTable, menu("Home", {menu("A"), menu("B")}));
  image.childCount(0, 1);
  EXPECT_THAT(checked(image), HasSubstr("record 2 is not reachable from the root"));
  EXPECT_THAT(checked(image), Not(HasSubstr("[unused-data]")));
}

TEST(InventoryCheckOfItems, SharedNameIsJudgedOnce) {
  InventoryImage image(Layout::kTwoTable, menu("Home", {menu("A"), menu("B"), menu("C")}));
  image.name(1, "\xFF").dataIndex(2, 1).dataIndex(3, 1);
  const std::string out = checked(image);
  const std::size_t first = out.find("[name-utf8]");
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(out.find("[name-utf8]", first + 1), std::string::npos);
}

TEST(StatsOfSmallFiles, LoneRootIsTheDeepestRecord) {
  const InventoryImage image(Layout::kTwoTable, menu("Home"));
  EXPECT_THAT(statsOf(image.bytes(), Format::kJson).out, HasSubstr("\"deepest\":\"/\""));
}

}  // namespace
}  // namespace Orvane
