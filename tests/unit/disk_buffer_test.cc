#include "io/disk_buffer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

#include "disk_buffer_fixture.h"
#include "io/write_behind.h"
#include "test_support.h"

namespace Orvane {
namespace {

using test::expectThrown;
using test::kWriteMessage;
using test::openDescriptors;
using test::OpenDiskBuffer;

using DiskBufferStream = test::DiskBufferFixture;

TEST_F(DiskBufferStream, ConstructionOpensNothing) {
  const DiskBuffer fromText(path_.c_str());
  const DiskBuffer fromString(path_);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(DiskBufferStream, BothConstructorsBindTheFile) {
  DiskBuffer fromText(path_.c_str());
  EXPECT_TRUE(fromText.openForWrite());
  put(fromText, "text");
  fromText.close();
  EXPECT_EQ(test::readFile(path_), "text");
  DiskBuffer fromString(path_);
  EXPECT_TRUE(fromString.openForRead());
  EXPECT_EQ(get(fromString, 4), "text");
}

TEST_F(DiskBufferStream, OpenForWriteCreatesAFile) {
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "");
}

TEST_F(DiskBufferStream, OpenForWriteTruncatesAFile) {
  test::writeFile(path_, "long old content");
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  EXPECT_EQ(test::readFile(path_), "");
  put(buffer, "new");
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "new");
}

TEST_F(DiskBufferStream, OpenForWriteInMissingFolderFailsAndSoDoesWriting) {
  OpenDiskBuffer buffer(unreachable_);
  EXPECT_FALSE(buffer.openForWrite());
  EXPECT_EQ(buffer.currentMode(), 2U);
  putFails(buffer);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(buffer.currentMode(), 0U);
}

TEST_F(DiskBufferStream, OpenForReadOfMissingFileFailsAndSoDoesReading) {
  OpenDiskBuffer buffer(path_);
  EXPECT_FALSE(buffer.openForRead());
  EXPECT_EQ(buffer.currentMode(), 1U);
  getFails(buffer, 1);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(buffer.currentMode(), 0U);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(DiskBufferStream, SecondOpenIsRefusedAndTheFirstGoesOn) {
  OpenDiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, "one");
  EXPECT_FALSE(buffer.openForWrite());
  EXPECT_FALSE(buffer.openForRead());
  EXPECT_FALSE(buffer.openRawRead());
  EXPECT_FALSE(buffer.openRawWrite());
  EXPECT_EQ(buffer.currentMode(), 2U);
  put(buffer, "two");
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "onetwo");
}

TEST_F(DiskBufferStream, OpensAgainAfterClosing) {
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, "abc");
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(buffer.openForRead());
  EXPECT_EQ(get(buffer, 3), "abc");
  getFails(buffer, 1);
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(buffer.openForRead());
  EXPECT_EQ(get(buffer, 2), "ab");
}

TEST_F(DiskBufferStream, BytesPassUnchanged) {
  std::string all;
  for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, all);
  put(buffer, "\r\n\n");
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), all + "\r\n\n");
}

// Into the same place as pieces that are written one by one, also where the stream's buffer ends.
TEST_F(DiskBufferStream, SeveralPiecesAtOnceAreWrittenWhole) {
  std::string pieces;
  for (int i = 0; pieces.size() < (1 << 22); ++i) pieces += std::to_string(1000000 + i);
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, "before");
  EXPECT_TRUE(buffer.writeEach(pieces.data(), 7, pieces.size() / 7));
  EXPECT_TRUE(buffer.writeEach(pieces.data(), 7, 0));
  put(buffer, "behind");
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "before" + pieces + "behind");
}

TEST_F(DiskBufferStream, SeveralPiecesThrowAsOneDoes) {
  DiskBuffer buffer(path_);
  const auto writeFails = [](DiskBuffer& to, const std::string& pieces, int length) {
    expectThrown<OVWriteError>([&] { to.writeEach(pieces.data(), length, 2); }, kWriteMessage);
  };
  writeFails(buffer, "onetwo", 3);
  EXPECT_TRUE(buffer.writeEach("onetwo", 3, 0));
  EXPECT_TRUE(buffer.openForWrite());
  writeFails(buffer, "onetwo", -3);
  EXPECT_TRUE(buffer.close());

  DiskBuffer full("/dev/full");
  EXPECT_TRUE(full.openForWrite());
  writeFails(full, std::string(1 << 22, 'x'), 1 << 21);
}

TEST_F(DiskBufferStream, WriteWhileClosedThrows) {
  DiskBuffer buffer(path_);
  putFails(buffer);
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, "kept");
  EXPECT_TRUE(buffer.close());
  putFails(buffer);
  EXPECT_EQ(test::readFile(path_), "kept");
}

TEST_F(DiskBufferStream, WriteOnWhatIsOpenForReadingThrows) {
  test::writeFile(path_, "kept");
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForRead());
  putFails(buffer);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "kept");
}

TEST_F(DiskBufferStream, WriteOfNegativeLengthThrows) {
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  expectThrown<OVWriteError>([&] { buffer.write("x", -1); }, kWriteMessage);
}

TEST_F(DiskBufferStream, ReadPastTheEndThrows) {
  test::writeFile(path_, "abc");
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForRead());
  EXPECT_EQ(get(buffer, 2), "ab");
  getFails(buffer, 2);
}

TEST_F(DiskBufferStream, ReadWhileClosedThrows) {
  test::writeFile(path_, "abc");
  DiskBuffer buffer(path_);
  getFails(buffer, 1);
}

TEST_F(DiskBufferStream, WriteThatMeetsAFullDiskThrows) {
  DiskBuffer buffer("/dev/full");
  EXPECT_TRUE(buffer.openForWrite());
  const std::string large(1 << 22, 'x');
  expectThrown<OVWriteError>([&] { buffer.write(large.data(), static_cast<int>(large.size())); },
                             kWriteMessage);
}

TEST_F(DiskBufferStream, NothingIsWrittenBehindAFailure) {
  OpenDiskBuffer buffer(path_);
  ASSERT_TRUE(buffer.openForWrite());
  put(buffer, "before");
  EXPECT_EQ(buffer.seek(-100, 0), -1);
  putFails(buffer);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "before");
}

TEST_F(DiskBufferStream, CloseThatMeetsAFullDiskThrowsAndIsClosed) {
  const std::size_t before = openDescriptors();
  OpenDiskBuffer buffer("/dev/full");
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, "x");
  expectThrown<OVWriteError>([&] { buffer.close(); }, kWriteMessage);
  EXPECT_EQ(buffer.currentMode(), 0U);
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_TRUE(buffer.close());
}

// A failed raw transfer closes the buffer, but what the stream still holds is lost all the same.
TEST_F(DiskBufferStream, CloseReportsLostBytesWhateverTheModeHasBecome) {
  OpenDiskBuffer buffer("/dev/full");
  ASSERT_TRUE(buffer.openForWrite());
  ASSERT_TRUE(buffer.write("0123456789", 10));
  ASSERT_FALSE(buffer.commitBlock(1));
  ASSERT_EQ(buffer.currentMode(), 0U);
  EXPECT_THROW(buffer.close(), OVWriteError);
}

TEST_F(DiskBufferStream, DestructionOverAFullDiskIsSilent) {
  const std::size_t before = openDescriptors();
  {
    DiskBuffer buffer("/dev/full");
    EXPECT_TRUE(buffer.openForWrite());
    put(buffer, "x");
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(DiskBufferStream, DestructionWritesOutAnOpenStream) {
  {
    const std::unique_ptr<Buffer> buffer = std::make_unique<DiskBuffer>(path_);
    EXPECT_TRUE(buffer->openForWrite());
    put(*buffer, "abc");
  }
  EXPECT_EQ(test::readFile(path_), "abc");
}

TEST_F(DiskBufferStream, SeekWhileWriting) {
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, "abcdef");
  EXPECT_EQ(buffer.seek(2, 0), 2);
  put(buffer, "C");
  EXPECT_EQ(buffer.seek(1, 1), 4);
  put(buffer, "E");
  EXPECT_EQ(buffer.seek(-1, 2), 5);
  put(buffer, "F");
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "abCdEF");
}

TEST_F(DiskBufferStream, SeekWhileReading) {
  test::writeFile(path_, "abcdef");
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForRead());
  EXPECT_EQ(buffer.seek(-2, 2), 4);
  EXPECT_EQ(get(buffer, 2), "ef");
  EXPECT_EQ(buffer.seek(-3, 1), 3);
  EXPECT_EQ(get(buffer, 1), "d");
  EXPECT_EQ(buffer.seek(1, 0), 1);
  EXPECT_EQ(get(buffer, 1), "b");
}

TEST_F(DiskBufferStream, SeekFromAnUnknownPlaceIsFromTheBeginning) {
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  put(buffer, "abc");
  EXPECT_EQ(buffer.seek(0, 7), 0);
  put(buffer, "A");
  EXPECT_EQ(buffer.seek(2, -1), 2);
  put(buffer, "C");
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(test::readFile(path_), "AbC");
}

TEST_F(DiskBufferStream, AFileLargerThanTheSystemIsToKeepIsWrittenWhole) {
  std::string content;
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForWrite());
  for (char letter = 'a'; content.size() < 2 * WriteBehind::kKept; ++letter) {
    const std::string piece(3'000'017, letter);
    put(buffer, piece);
    content += piece;
  }
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(test::readFile(path_) == content);
}

TEST_F(DiskBufferStream, SeekOutsideTheStreamModesMovesNothing) {
  test::writeFile(path_, "abcdef");
  DiskBuffer buffer(path_);
  EXPECT_EQ(buffer.seek(3, 0), -1);
  EXPECT_TRUE(buffer.openForRead());
  EXPECT_EQ(get(buffer, 1), "a");
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(buffer.openRawRead());
  EXPECT_EQ(buffer.seek(3, 0), -1);
  std::string piece;
  EXPECT_EQ(nextBlock(buffer, piece), 6U);
  EXPECT_EQ(piece, "abcdef");
}

TEST_F(DiskBufferStream, SeekOnAFailedStreamIsRefused) {
  test::writeFile(path_, "abc");
  DiskBuffer buffer(path_);
  EXPECT_TRUE(buffer.openForRead());
  EXPECT_EQ(buffer.seek(-1, 0), -1);
  getFails(buffer, 1);
  EXPECT_EQ(buffer.seek(0, 0), -1);

  DiskBuffer unopened(unreachable_);
  EXPECT_FALSE(unopened.openForWrite());
  EXPECT_EQ(unopened.seek(0, 0), -1);
}

}  // namespace
}  // namespace Orvane
