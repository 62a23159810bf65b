#include "output/data_record.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "output/tree_record.h"
#include "test_support.h"

namespace Orvane {
namespace {

using Record = std::array<std::uint8_t, 72>;

// Filled over old content, as the writer's one record buffer is.
Record recordOf(const MenuNode& node) {
  Record record;
  record.fill(0xEE);
  fillDataRecord(node, record);
  return record;
}

std::string nameField(const Record& record) {
  return {record.begin() + 4, record.begin() + 68};
}

TEST(DataRecord, FieldsStandInOrderLowestByteFirst) {
  MenuNode node;
  node.setAll(2, 0x04030201, "Ab", 0x11, 0x22, 0x4433);
  Record expected{};
  expected[0] = 0x01;
  expected[1] = 0x02;
  expected[2] = 0x03;
  expected[3] = 0x04;
  expected[4] = 'A';
  expected[5] = 'b';
  expected[68] = 0x11;
  expected[69] = 0x22;
  expected[70] = 0x33;
  expected[71] = 0x44;
  EXPECT_EQ(recordOf(node), expected);
}

TEST(DataRecord, WideValuesAreCutToTheirLowBits) {
  MenuNode node;
  node.setAll(1, 0xFFFFFFFF, "", 0x107, 0xFFFFFF03, 0xABCD1234);
  const Record record = recordOf(node);
  EXPECT_EQ(record[68], 0x07);
  EXPECT_EQ(record[69], 0x03);
  EXPECT_EQ(record[70], 0x34);
  EXPECT_EQ(record[71], 0x12);
}

// Around the end of the field: the attributes behind it must come out whole whatever the name.
TEST(DataRecord, NamesOfEveryLengthFillTheField) {
  for (std::size_t length = 0; length <= 64; ++length) {
    const std::string name(length, 'n');
    MenuNode node;
    node.setAll(1, 5, name, 0x77, 0x88, 0x99AA);
    const Record record = recordOf(node);
    EXPECT_EQ(nameField(record), name + std::string(64 - length, '\0')) << length;
    EXPECT_EQ(record[0], 5) << length;
    EXPECT_EQ(record[68], 0x77) << length;
    EXPECT_EQ(record[69], 0x88) << length;
    EXPECT_EQ(record[70], 0xAA) << length;
    EXPECT_EQ(record[71], 0x99) << length;
  }
}

TEST(DataRecord, LongerNameIsCutTo64) {
  for (const std::string_view old : {"abc", "0123456789012345678901234567890123456789"}) {
    MenuNode node;
    node.setAll(1, 5, old, 7, 0x88, 0x99AA);
    node.setName(std::string(65, 'n'));
    ASSERT_EQ(node.getName().size(), 62 + old.size());
    const Record record = recordOf(node);
    EXPECT_EQ(nameField(record), std::string(62, 'n') + std::string(old.substr(0, 2)));
    EXPECT_EQ(record[68], 7);
    EXPECT_EQ(record[69], 0x88);
    EXPECT_EQ(record[70], 0xAA);
  }
}

TEST(DataRecord, BytesAfterAZeroByteAreKept) {
  using std::string_view_literals::operator""sv;
  MenuNode node;
  node.setName("a\0\xFFz"sv);
  EXPECT_EQ(nameField(recordOf(node)), std::string("a\0\xFFz"sv) + std::string(60, '\0'));
}

TEST(TreeRecord, EncodesLowestByteFirst) {
  const TreeRecord record{0x04030201, 0x14131211, 0xF4F3F2F1};
  constexpr std::array<std::uint8_t, 12> kExpected = {0x01, 0x02, 0x03, 0x04, 0x11, 0x12,
                                                      0x13, 0x14, 0xF1, 0xF2, 0xF3, 0xF4};
  EXPECT_EQ(record.encode(), kExpected);
}

TEST(TreeRecord, TakesOnlyTheChildCountFromTheNode) {
  MenuNode node;
  test::addMedia(node, 1, "a");
  test::addMedia(node, 2, "b");
  TreeRecord record{7, 8, 9};
  fillTreeRecord(node, record);
  EXPECT_EQ(record.firstChildIndex, 7U);
  EXPECT_EQ(record.childCount, 2U);
  EXPECT_EQ(record.dataIndex, 9U);
}

}  // namespace
}  // namespace Orvane
