// Streams that a failed block transfer leaves open while the buffer counts as closed.
#include <unistd.h>

#include "disk_buffer_fixture.h"

namespace Orvane::test {
namespace {

class DiskBufferLeftOpen : public DiskBufferFixture {
 protected:
  // Blocks don't go with streams: the transfer fails and closes the buffer, but not the stream.
  static void failATransfer(OpenDiskBuffer& buffer) {
    EXPECT_FALSE(buffer.commitBlock(1));
    EXPECT_EQ(buffer.currentMode(), 0U);
  }
};

TEST_F(DiskBufferLeftOpen, NoOtherStreamCanBeOpened) {
  OpenDiskBuffer buffer(path_);
  ASSERT_TRUE(buffer.openForWrite());
  put(buffer, "kept");
  failATransfer(buffer);
  EXPECT_TRUE(buffer.openForRead()) << "the stream is still the one that writes";
  EXPECT_EQ(buffer.currentMode(), 1U);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(readFile(path_), "kept");
}

TEST_F(DiskBufferLeftOpen, NothingCanBeWrittenAfterOpeningAgain) {
  OpenDiskBuffer buffer(path_);
  ASSERT_TRUE(buffer.openForWrite());
  put(buffer, "kept");
  failATransfer(buffer);
  EXPECT_TRUE(buffer.openForWrite());
  expectThrown<OVWriteError>([&] { put(buffer, "refused"); }, kWriteMessage);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(readFile(path_), "kept");
}

TEST_F(DiskBufferLeftOpen, SeekingMovesNothing) {
  OpenDiskBuffer buffer(path_);
  ASSERT_TRUE(buffer.openForWrite());
  put(buffer, "abcdef");
  failATransfer(buffer);
  EXPECT_EQ(buffer.seek(2, SEEK_SET), -1);
  EXPECT_TRUE(buffer.openRawWrite());
  EXPECT_EQ(buffer.seek(2, SEEK_SET), -1);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(readFile(path_), "abcdef");
}

TEST_F(DiskBufferLeftOpen, SeekingWhileBlocksAreReadFindsNoPosition) {
  writeFile(path_, "text");
  OpenDiskBuffer buffer(path_);
  ASSERT_TRUE(buffer.openForRead());
  failATransfer(buffer);
  ASSERT_TRUE(buffer.openRawRead());
  EXPECT_EQ(buffer.seek(3, SEEK_SET), -1);
}

TEST_F(DiskBufferLeftOpen, ClosingStillTellsThatWritingFailed) {
  OpenDiskBuffer buffer("/dev/full");
  ASSERT_TRUE(buffer.openForWrite());
  put(buffer, "lost");
  failATransfer(buffer);
  buffer.openForRead();
  expectThrown<OVWriteError>([&] { buffer.close(); }, kWriteMessage);
}

TEST_F(DiskBufferLeftOpen, ReadingStreamStaysOneThatReads) {
  writeFile(path_, "text");
  OpenDiskBuffer buffer(path_);
  ASSERT_TRUE(buffer.openForRead());
  EXPECT_EQ(get(buffer, 2), "te");
  failATransfer(buffer);
  buffer.openForWrite();
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(readFile(path_), "text");
}

// Only what was written can be lost. The stream's descriptor is the lowest that is free; one taken
// away from it can't be closed.
TEST_F(DiskBufferLeftOpen, ReadingStreamThatCannotBeClosedLosesNothing) {
  writeFile(path_, "text");
  const int next = ::dup(STDIN_FILENO);
  ASSERT_GE(next, 0);
  ::close(next);
  for (const bool writes : {false, true}) {
    OpenDiskBuffer buffer(path_);
    ASSERT_TRUE(writes ? buffer.openForWrite() : buffer.openForRead());
    ASSERT_EQ(::close(next), 0);
    if (writes) {
      expectThrown<OVWriteError>([&] { buffer.close(); }, kWriteMessage);
    } else {
      EXPECT_TRUE(buffer.close());
    }
    EXPECT_EQ(buffer.currentMode(), 0U);
  }
}

}  // namespace
}  // namespace Orvane::test
