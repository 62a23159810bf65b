// The raw path of DiskBuffer: blocks through a file descriptor.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>

#include "disk_buffer_fixture.h"
#include "io/disk_buffer.h"
#include "test_support.h"

namespace Orvane {
namespace {

using test::openDescriptors;
using test::OpenDiskBuffer;

using DiskBufferRaw = test::DiskBufferFixture;

TEST_F(DiskBufferRaw, RawReadDeliversBlocksAndThenNothing) {
  std::string content;
  for (int i = 0; i < 5000; ++i) content += static_cast<char>('a' + i % 26);
  test::writeFile(path_, content);
  OpenDiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawRead());
  EXPECT_EQ(buffer.currentMode(), 3U);
  std::string piece;
  EXPECT_EQ(nextBlock(buffer, piece), 4096U);
  EXPECT_EQ(piece, content.substr(0, 4096));
  EXPECT_EQ(nextBlock(buffer, piece), 904U);
  EXPECT_EQ(piece, content.substr(4096));
  EXPECT_EQ(nextBlock(buffer, piece), 0U);
  EXPECT_EQ(nextBlock(buffer, piece), 0U);
  EXPECT_EQ(buffer.currentMode(), 3U);
  EXPECT_EQ(buffer.counter(), 5000U);
}

TEST_F(DiskBufferRaw, MissingFileLeavesTheReasonAndNothingToClose) {
  {
    OpenDiskBuffer buffer(path_);
    EXPECT_FALSE(buffer.openRawRead());
    EXPECT_EQ(errno, ENOENT);
    errno = 0;
  }
  EXPECT_EQ(errno, 0);
}

TEST_F(DiskBufferRaw, SecondOpenIsRefusedAndTheFirstGoesOn) {
  test::writeFile(path_, std::string(4096, 'a') + "rest");
  OpenDiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawRead());
  std::string piece;
  EXPECT_EQ(nextBlock(buffer, piece), 4096U);
  EXPECT_FALSE(buffer.openRawRead());
  EXPECT_EQ(nextBlock(buffer, piece), 4U);
  EXPECT_EQ(piece, "rest");
}

TEST_F(DiskBufferRaw, RawReadStaysAlignedToAllThatWasEverDelivered) {
  test::writeFile(path_, std::string(5000, 'x'));
  OpenDiskBuffer buffer(path_);
  std::string piece;
  EXPECT_TRUE(buffer.openRawRead());
  nextBlock(buffer, piece);
  nextBlock(buffer, piece);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(buffer.counter(), 5000U);
  EXPECT_TRUE(buffer.openRawRead());
  EXPECT_EQ(nextBlock(buffer, piece), 8192U - 5000U);
  EXPECT_EQ(nextBlock(buffer, piece), 5000U - 3192U);
  EXPECT_EQ(nextBlock(buffer, piece), 0U);
}

TEST_F(DiskBufferRaw, RawReadOfAnEmptyFileDeliversNothing) {
  test::writeFile(path_, "");
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawRead());
  std::string piece = "old";
  EXPECT_EQ(nextBlock(buffer, piece), 0U);
}

TEST_F(DiskBufferRaw, RawShortReadClosesTheBufferButNotTheFile) {
  test::writeFile(path_, std::string(5000, 'x'));
  const std::size_t before = openDescriptors();
  OpenDiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawRead());
  std::filesystem::resize_file(path_, 100);
  char* data = nullptr;
  unsigned length = 0;
  EXPECT_FALSE(buffer.nextBlock(&data, &length));
  EXPECT_EQ(buffer.currentMode(), 0U);
  EXPECT_EQ(buffer.counter(), 0U);
  EXPECT_EQ(openDescriptors(), before + 1);
  EXPECT_TRUE(buffer.openRawRead()) << "a closed buffer opens again";
  EXPECT_EQ(openDescriptors(), before + 1);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(DiskBufferRaw, RawReadOfADirectoryFailsAtTheBlock) {
  OpenDiskBuffer buffer(dir_ / "");
  EXPECT_TRUE(buffer.openRawRead());
  char* data = nullptr;
  unsigned length = 0;
  EXPECT_FALSE(buffer.nextBlock(&data, &length));
  EXPECT_EQ(buffer.currentMode(), 0U);
}

TEST_F(DiskBufferRaw, RawOpensThatTheSystemRefusesLeaveTheBufferClosed) {
  OpenDiskBuffer buffer(unreachable_);
  EXPECT_FALSE(buffer.openRawRead());
  EXPECT_EQ(buffer.currentMode(), 0U);
  EXPECT_FALSE(buffer.openRawWrite());
  EXPECT_EQ(buffer.currentMode(), 0U);
}

TEST_F(DiskBufferRaw, CommitWhileRawReadingWritesNothing) {
  test::writeFile(path_, "abc");
  OpenDiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawRead());
  EXPECT_TRUE(buffer.commitBlock(3));
  EXPECT_EQ(buffer.currentMode(), 3U);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "abc");
}

TEST_F(DiskBufferRaw, RawWriteCommitsTheFilledBlock) {
  test::writeFile(path_, std::string(9999, 'o'));
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawWrite());
  EXPECT_EQ(test::readFile(path_), "");
  std::string expected;
  for (const int length : {4096, 10, 0, 4096}) {
    char* data = nullptr;
    unsigned capacity = 0;
    EXPECT_TRUE(buffer.nextBlock(&data, &capacity));
    ASSERT_EQ(capacity, 4096U);
    const auto size = static_cast<std::size_t>(length);
    std::fill_n(data, size, static_cast<char>('a' + length % 26));
    EXPECT_TRUE(buffer.commitBlock(length));
    expected += std::string(size, static_cast<char>('a' + length % 26));
  }
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), expected);
}

TEST_F(DiskBufferRaw, RawWriteCreatesAFileReadableByAll) {
  const mode_t oldMask = umask(0);
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawWrite());
  umask(oldMask);
  struct stat status {};
  ASSERT_EQ(stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0644U);
}

TEST_F(DiskBufferRaw, RawShortWriteClosesTheBufferButNotTheFile) {
  const std::size_t before = openDescriptors();
  {
    OpenDiskBuffer buffer("/dev/full");
    EXPECT_TRUE(buffer.openRawWrite());
    EXPECT_EQ(buffer.currentMode(), 4U);
    char* data = nullptr;
    unsigned capacity = 0;
    EXPECT_TRUE(buffer.nextBlock(&data, &capacity));
    std::fill_n(data, 10, 'x');
    EXPECT_FALSE(buffer.commitBlock(10));
    EXPECT_EQ(buffer.currentMode(), 0U);
    EXPECT_EQ(openDescriptors(), before + 1);
  }
  EXPECT_EQ(openDescriptors(), before) << "destruction closes what is left open";
}

TEST_F(DiskBufferRaw, CommitTakesNoMoreThanTheBlock) {
  OpenDiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openRawWrite());
  EXPECT_FALSE(buffer.commitBlock(4097));
  EXPECT_EQ(buffer.currentMode(), 0U);
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(buffer.openRawWrite());
  EXPECT_FALSE(buffer.commitBlock(-1));
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "");
}

TEST_F(DiskBufferRaw, ClosedBufferHandsOutItsBlockButCommitsNowhere) {
  DiskBuffer buffer(path_);
  char* data = nullptr;
  unsigned length = 0;
  EXPECT_TRUE(buffer.nextBlock(&data, &length));
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(length, 4096U);
  *data = 'x';
  EXPECT_FALSE(buffer.commitBlock(1));
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(DiskBufferRaw, CloseReleasesTheDescriptorOfEveryMode) {
  test::writeFile(path_, "abc");
  const std::size_t before = openDescriptors();
  DiskBuffer buffer(path_);
  using Open = bool (DiskBuffer::*)();
  constexpr Open kOpens[] = {&DiskBuffer::openForRead, &DiskBuffer::openRawRead,
                             &DiskBuffer::openForWrite, &DiskBuffer::openRawWrite};
  for (const Open open : kOpens) {
    EXPECT_TRUE((buffer.*open)());
    EXPECT_EQ(openDescriptors(), before + 1);
    EXPECT_TRUE(buffer.close());
    EXPECT_EQ(openDescriptors(), before);
  }
}

}  // namespace
}  // namespace Orvane
