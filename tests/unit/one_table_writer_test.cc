#include "output/one_table_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "errors/ov_write_error.h"
#include "output/one_table_layout.h"
#include "recording_buffer.h"
#include "test_support.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

std::vector<std::uint8_t> written(const MenuTree& tree) {
  RecordingBuffer buffer;
  EXPECT_TRUE(writeOneTable(tree, buffer));
  return {buffer.content.begin(), buffer.content.end()};
}

std::uint32_t u32(const std::vector<std::uint8_t>& file, std::size_t at) {
  return file.at(at) | std::uint32_t{file.at(at + 1)} << 8 | std::uint32_t{file.at(at + 2)} << 16 |
         std::uint32_t{file.at(at + 3)} << 24;
}

// "firstChildIndex childCount mediaId name", the name up to its first zero byte.
std::vector<std::string> recordsIn(const std::vector<std::uint8_t>& file) {
  std::vector<std::string> records;
  for (std::size_t at = 32; at < file.size(); at += 80) {
    std::string name;
    for (std::size_t i = 0; i < 64 && file.at(at + 12 + i) != 0; ++i) {
      name += static_cast<char>(file[at + 12 + i]);
    }
    const std::uint32_t first = u32(file, at);
    records.push_back((first == 0xFFFFFFFF ? "-" : std::to_string(first)) + " " +
                      std::to_string(u32(file, at + 4)) + " " + std::to_string(u32(file, at + 8)) +
                      " " + name);
  }
  EXPECT_EQ(u32(file, 24), records.size());
  return records;
}

// Root R with menu A, which holds media leaf C, and media leaf B, of the same id and name as C.
TEST(OneTableWriter, WritesTheWorkedExample) {
  MenuTree tree;
  MenuNode& root = *tree.getRoot();
  root.setAll(NODE_TYPE_MENU, 0, "R", 7, 0, 0);
  MenuNode& a = addNode(root, NODE_TYPE_MENU, 5, "A", 3, 0, 0x0201);
  addNode(root, NODE_TYPE_MEDIA, 17, "B", 0, 3);
  addNode(a, NODE_TYPE_MEDIA, 17, "B", 0, 4);

  // clang-format off
  const std::vector<std::uint8_t> expected{
      // file header and table descriptor
      0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x10, 0x00, 0x00, 0x00,
      0x03, 0x01, 0x00, 0x00, 0x20, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x50, 0x00, 0x00, 0x00,
      // R
      0x01, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x52, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x07, 0x00, 0x00, 0x00,
      // A
      0x03, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00, 0x41, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0x01, 0x02,
      // B
      0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x11, 0x00, 0x00, 0x00, 0x42, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00,
      // C
      0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x11, 0x00, 0x00, 0x00, 0x42, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00,
  };
  // clang-format on
  ASSERT_EQ(expected.size(), 352U);
  EXPECT_EQ(written(tree), expected);
}

TEST(OneTableWriter, RootWithoutChildrenIsOneRecord) {
  const MenuTree tree;
  const std::vector<std::uint8_t> file = written(tree);
  EXPECT_EQ(file.size(), 112U);
  EXPECT_THAT(recordsIn(file), ElementsAre("1 0 0 root"));
}

TEST(OneTableWriter, MediaRootHidesItsChildren) {
  MenuTree tree;
  tree.getRoot()->setNodeType(NODE_TYPE_MEDIA);
  addMedia(*tree.getRoot(), 1, "hidden");
  EXPECT_THAT(recordsIn(written(tree)), ElementsAre("- 1 0 root"));
}

TEST(OneTableWriter, PlaylistsKeepTheirPlainOrder) {
  MenuTree tree;
  addMedia(addMenu(*tree.getRoot(), 1, "Playlists", 7), 2, "listed");
  addMedia(addMenu(*tree.getRoot(), 3, "Playlists", 7), 4, "listed too");
  addMedia(addMenu(*tree.getRoot(), 5, "Songs", 7), 6, "song");
  EXPECT_THAT(recordsIn(written(tree)),
              ElementsAre("1 3 0 root", "4 1 1 Playlists", "5 1 3 Playlists", "6 1 5 Songs",
                          "- 0 2 listed", "- 0 4 listed too", "- 0 6 song"));
}

TEST(OneTableWriter, EqualLeavesHaveARecordEach) {
  MenuTree tree;
  MenuNode& one = addMenu(*tree.getRoot(), 1, "one");
  MenuNode& two = addMenu(*tree.getRoot(), 2, "two");
  addMedia(one, 9, "same");
  addMedia(two, 9, "same");
  addMedia(two, 9, "same");
  EXPECT_THAT(recordsIn(written(tree)), ElementsAre("1 2 0 root", "3 1 1 one", "4 2 2 two",
                                                    "- 0 9 same", "- 0 9 same", "- 0 9 same"));
}

TEST(OneTableWriter, EmptyMenuPointsToWhereItsChildrenWouldBe) {
  MenuTree tree;
  addMenu(*tree.getRoot(), 1, "empty");
  addMedia(addMenu(*tree.getRoot(), 2, "full"), 3, "song");
  addMenu(*tree.getRoot(), 4, "empty too");
  EXPECT_THAT(recordsIn(written(tree)), ElementsAre("1 3 0 root", "4 0 1 empty", "4 1 2 full",
                                                    "5 0 4 empty too", "- 0 3 song"));
}

TEST(OneTableWriter, FamiliesFollowEachOther) {
  MenuTree tree;
  MenuNode& a = addMenu(*tree.getRoot(), 1, "a");
  MenuNode& b = addMenu(*tree.getRoot(), 2, "b");
  MenuNode& aa = addMenu(a, 3, "aa");
  addMedia(b, 4, "b1");
  addMedia(aa, 5, "aa1");
  addMedia(a, 6, "a1");
  EXPECT_THAT(recordsIn(written(tree)), ElementsAre("1 2 0 root", "3 2 1 a", "6 1 2 b", "5 1 3 aa",
                                                    "- 0 6 a1", "- 0 5 aa1", "- 0 4 b1"));
}

TEST(OneTableWriter, WritesHeaderDescriptorAndEachRecordByItself) {
  MenuTree tree;
  addMedia(*tree.getRoot(), 1, "song");
  RecordingBuffer buffer;
  EXPECT_TRUE(writeOneTable(tree, buffer));
  EXPECT_THAT(buffer.calls,
              ElementsAre("openForWrite", "write 16", "write 16", "write 80", "write 80", "close"));
}

TEST(OneTableWriter, TakesNoNoticeOfAFailedOpen) {
  const MenuTree tree;
  RecordingBuffer buffer;
  buffer.opens = false;
  EXPECT_TRUE(writeOneTable(tree, buffer));
  EXPECT_EQ(buffer.content.size(), 112U);
}

TEST(OneTableWriter, TakesNoNoticeOfWhatAWriteReturns) {
  MenuTree tree;
  addMedia(*tree.getRoot(), 1, "song");
  RecordingBuffer buffer;
  buffer.accepts = false;
  EXPECT_TRUE(writeOneTable(tree, buffer));
  EXPECT_EQ(buffer.calls.size(), 6U);
  EXPECT_EQ(buffer.content.size(), 192U);
}

TEST(OneTableWriter, FailedWritePassesThrough) {
  const MenuTree tree;
  for (std::size_t write = 0; write < 3; ++write) {
    RecordingBuffer buffer;
    buffer.failingWrite = write;
    EXPECT_THROW(writeOneTable(tree, buffer), OVWriteError);
    EXPECT_EQ(buffer.calls.size(), write + 2);  // no write after it, and no close
  }
}

TEST(OneTableWriter, NameFieldHoldsUpTo64Bytes) {
  for (const std::size_t length : {0U, 62U, 63U, 64U}) {
    MenuTree tree;
    const std::string name(length, 'n');
    tree.getRoot()->setAll(NODE_TYPE_MENU, 0, name, 0xA7, 0xB6, 0xD5C4);
    const std::vector<std::uint8_t> file = written(tree);
    EXPECT_EQ(std::string(file.begin() + 44, file.begin() + 108),
              name + std::string(64 - length, '\0'));
    EXPECT_EQ(u32(file, 108), 0xD5C4B6A7) << length;
  }
}

TEST(OneTableWriter, CutsALongerNameTo64Bytes) {
  MenuTree tree;
  tree.getRoot()->setName(std::string(70, 'n'));
  ASSERT_EQ(tree.getRoot()->getName().size(), 66U);
  const std::vector<std::uint8_t> file = written(tree);
  EXPECT_EQ(std::string(file.begin() + 44, file.begin() + 108), std::string(62, 'n') + "ro");
  EXPECT_EQ(u32(file, 108), 7U);
}

TEST(OneTableWriter, ZeroBytesInANameAreWritten) {
  MenuTree tree;
  tree.getRoot()->setName(std::string_view("a\0b", 3));
  EXPECT_EQ(u32(written(tree), 44), 0x00620061U);
}

TEST(OneTableWriter, CutsWideValues) {
  MenuTree tree;
  tree.getRoot()->setAll(NODE_TYPE_MENU, 0xFFFFFFFE, "", 0x1203, 0x1FF, 0x12345);
  const std::vector<std::uint8_t> file = written(tree);
  EXPECT_EQ(u32(file, 40), 0xFFFFFFFEU);
  EXPECT_EQ(u32(file, 108), 0x2345FF03U);
}

TEST(OneTableLayout, GivesTheIndexOfTheFirstChild) {
  MenuTree tree;
  addMedia(*tree.getRoot(), 1, "song");
  NodeTable table;
  for (int i = 0; i < 5; ++i) table.append({tree.root()});
  EXPECT_EQ(layoutNodeChildren(tree.getRoot(), table), 5U);
  EXPECT_EQ(table.size(), 6U);
  EXPECT_EQ(layoutNodeChildren(nullptr, table), 0xFFFFFFFFU);
  EXPECT_EQ(layoutNodeChildren(*tree.getRoot()->childrenBegin(), table), 0xFFFFFFFFU);
  EXPECT_EQ(table.size(), 6U);
}

TEST(OneTableLayout, RecordIsFilledButForItsLink) {
  MenuNode node;
  node.setAll(NODE_TYPE_MENU, 0x01020304, "n", 5, 6, 7);
  std::array<std::uint8_t, kNodeRecordSize> record;
  record.fill(0xEE);
  fillNodeRecord(node, record);
  EXPECT_EQ(record[3], 0xEE);
  EXPECT_EQ(record[4], 0);
  EXPECT_EQ(record[8], 4);
  EXPECT_EQ(record[12], 'n');
  EXPECT_EQ(record[75], 0);
  EXPECT_EQ(record[76], 5);
  EXPECT_EQ(record[77], 6);
  EXPECT_EQ(record[78], 7);
  EXPECT_EQ(record[79], 0);
}

}  // namespace
}  // namespace Orvane::test
