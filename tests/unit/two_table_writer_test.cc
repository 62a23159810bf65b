#include "output/two_table_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "allocation_probe.h"
#include "errors/ov_write_error.h"
#include "recording_buffer.h"
#include "test_support.h"
#include "tree/position_index.h"
#include "two_tables.h"

namespace Orvane {
namespace {

using namespace std::string_literals;
using test::addMedia;
using test::addMenu;
using test::addNode;
using test::bytesFromHex;
using test::Links;
using test::RecordingBuffer;
using test::Tables;
using ::testing::ElementsAre;

class TwoTableWriter : public ::testing::Test {
 protected:
  Tables written() {
    RecordingBuffer buffer;
    EXPECT_TRUE(writeTwoTable(tree_, buffer));
    return Tables(buffer.content);
  }

  MenuTree tree_;
  MenuNode& root_ = *tree_.getRoot();
};

TEST_F(TwoTableWriter, WorkedExampleByteForByte) {
  root_.setName("R");
  MenuNode& a = addNode(root_, NODE_TYPE_MENU, 5, "A", 3, 2, 0x0201);
  addNode(root_, NODE_TYPE_MEDIA, 17, "Both", 0, 4, 0xABCD);
  addNode(a, NODE_TYPE_MEDIA, 17, "Both", 9, 9, 9);
  RecordingBuffer buffer;
  EXPECT_TRUE(writeTwoTable(tree_, buffer));

  const std::string expected = bytesFromHex(
      // File header: version 1, two tables, header size 16.
      "00 01 00 00  00 00 00 00  02 00 00 00  10 00 00 00 "
      // Tree table: at 48, four records of 12 bytes.
      "01 01 00 00  30 00 00 00  04 00 00 00  0C 00 00 00 "
      // Data table: at 96, three records of 72 bytes.
      "02 01 00 00  60 00 00 00  03 00 00 00  48 00 00 00 "
      // R: children from 1, two of them, data 0.
      "01 00 00 00  02 00 00 00  00 00 00 00 "
      // A: children from 3, one of them, data 1.
      "03 00 00 00  01 00 00 00  01 00 00 00 "
      // B: a media leaf, data 2.
      "FF FF FF FF  00 00 00 00  02 00 00 00 "
      // C: a media leaf, data 2.
      "FF FF FF FF  00 00 00 00  02 00 00 00 "
      // R: mediaId 0, "R", recType 7, rating 0, attribMask 0.
      "00 00 00 00 "
      "52 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "07 00 00 00 "
      // A: mediaId 5, "A", recType 3, rating 2, attribMask 0x0201.
      "05 00 00 00 "
      "41 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "03 02 01 02 "
      // B: mediaId 17, "Both", recType 0, rating 4, attribMask 0xABCD.
      "11 00 00 00 "
      "42 6F 74 68 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 04 CD AB");
  ASSERT_EQ(expected.size(), 312U);
  EXPECT_THAT(buffer.content, ::testing::ElementsAreArray(expected));
}

TEST_F(TwoTableWriter, CallsTheBufferOnceARecord) {
  addMedia(addMenu(root_, 5, "A"), 17, "B");
  addMedia(root_, 17, "B");
  RecordingBuffer buffer;
  EXPECT_TRUE(writeTwoTable(tree_, buffer));
  EXPECT_THAT(buffer.calls, ElementsAre("openForWrite", "write 16", "write 16", "write 16",
                                        "write 12", "write 12", "write 12", "write 12", "write 72",
                                        "write 72", "write 72", "close"));
}

TEST_F(TwoTableWriter, RefusedOpenIsNotLookedAt) {
  RecordingBuffer buffer;
  buffer.opens = false;
  EXPECT_TRUE(writeTwoTable(tree_, buffer));
  EXPECT_THAT(buffer.calls, ElementsAre("openForWrite", "write 16", "write 16", "write 16",
                                        "write 12", "write 72", "close"));
}

// Failures are thrown, not returned.
TEST_F(TwoTableWriter, WhatAWriteReturnsIsNotLookedAt) {
  addMedia(addMenu(root_, 5, "A"), 17, "B");
  RecordingBuffer expected;
  writeTwoTable(tree_, expected);
  RecordingBuffer buffer;
  buffer.accepts = false;
  EXPECT_TRUE(writeTwoTable(tree_, buffer));
  EXPECT_EQ(buffer.calls, expected.calls);
  EXPECT_EQ(buffer.content, expected.content);
}

TEST_F(TwoTableWriter, FailedWritePassesThroughAndLeavesNothingBehind) {
  addMedia(addMenu(root_, 5, "A"), 17, "B");
  for (std::size_t failing = 0; failing < 9; ++failing) {
    RecordingBuffer buffer;
    buffer.failingWrite = failing;
    buffer.calls.reserve(20);
    buffer.content.reserve(400);
    const std::ptrdiff_t before = test::liveAllocations();
    std::string message;
    try {
      writeTwoTable(tree_, buffer);
    } catch (const OVWriteError& error) {
      message = error.getMessage();
    }
    EXPECT_EQ(message, "no more") << failing;
    EXPECT_EQ(buffer.calls.size(), failing + 2);
    EXPECT_NE(buffer.calls.back(), "close");
    EXPECT_EQ(test::liveAllocations(), before) << failing;
  }
}

// With as many records, others are encoded when the first one is written.
TEST_F(TwoTableWriter, FailedWriteEndsTheEncodingAhead) {
  constexpr std::size_t kChildren = 250'000;
  for (std::uint32_t id = 1; id <= kChildren; ++id) addMedia(root_, id, "B");
  constexpr std::size_t kHeaders = 3;
  RecordingBuffer buffer;
  buffer.failingWrite = kHeaders + 1 + kChildren;
  EXPECT_THROW(writeTwoTable(tree_, buffer), OVWriteError);
  EXPECT_EQ(buffer.calls.size(), buffer.failingWrite + 2);
  EXPECT_EQ(buffer.calls.back(), "write 72");
}

TEST_F(TwoTableWriter, WritesTheSameTwice) {
  addMedia(addMenu(root_, 5, "A"), 17, "B");
  RecordingBuffer first;
  RecordingBuffer second;
  writeTwoTable(tree_, first);
  writeTwoTable(tree_, second);
  EXPECT_EQ(first.content, second.content);
}

TEST_F(TwoTableWriter, RootAlone) {
  RecordingBuffer buffer;
  EXPECT_TRUE(writeTwoTable(tree_, buffer));
  EXPECT_EQ(buffer.content.size(), 132U);
  const Tables tables(buffer.content);
  EXPECT_THAT(tables.tree, ElementsAre(Links{1, 0, 0}));
  EXPECT_THAT(tables.names, ElementsAre("root"));
}

TEST_F(TwoTableWriter, NameOf64BytesHasNoTerminator) {
  const std::string name(64, 'n');
  addNode(root_, NODE_TYPE_MEDIA, 1, name, 0x6E, 0x6F);
  const Tables tables = written();
  EXPECT_EQ(tables.data[1], "\x01\0\0\0"s + name + "\x6E\x6F\0\0"s);
}

TEST_F(TwoTableWriter, DeepTreeIsBuiltWrittenAndDestroyed) {
  constexpr std::uint32_t kDepth = 100000;
  const std::ptrdiff_t before = test::liveAllocations();
  {
    MenuTree tree;
    MenuNode* deepest = tree.getRoot();
    for (std::uint32_t i = 0; i < kDepth; ++i) deepest = &addMenu(*deepest, i % 10, "menu");
    RecordingBuffer buffer;
    EXPECT_TRUE(writeTwoTable(tree, buffer));
    const Tables tables(buffer.content);
    ASSERT_EQ(tables.tree.size(), kDepth + 1);
    EXPECT_EQ(tables.data.size(), 11U);
    for (std::uint32_t i = 0; i < kDepth; ++i) ASSERT_EQ(tables.tree[i].firstChildIndex, i + 1);
    EXPECT_EQ(tables.tree.back(), (Links{kDepth + 1, 0, 1 + (kDepth - 1) % 10}));
  }
  EXPECT_EQ(test::liveAllocations(), before);
}

TEST_F(TwoTableWriter, ManyNamesOfOneIdAreToldApartFast) {
  constexpr std::uint32_t kNodes = 200000;
  for (int round = 0; round < 2; ++round) {
    for (std::uint32_t i = 0; i < kNodes; ++i) addMedia(root_, 0, std::to_string(i));
  }
  const auto begin = std::chrono::steady_clock::now();
  const Tables tables = written();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
  ASSERT_EQ(tables.tree.size(), 2 * kNodes + 1);
  EXPECT_EQ(tables.data.size(), kNodes + 1);
  EXPECT_EQ(tables.tree[1 + kNodes + 123456].dataIndex, 1U + 123456U);
}

}  // namespace
}  // namespace Orvane
