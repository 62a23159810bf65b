#include "io/file_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <ios>
#include <string>

#include "disk_buffer_fixture.h"

namespace Orvane::test {
namespace {

class FileStreamTest : public DiskBufferFixture {
 protected:
  static constexpr std::size_t kBufferSize = 32;
  static constexpr char kGuard = '#';

  FileStreamTest() { memory_.fill(kGuard); }

  void open(FileStream& stream) {
    stream.setBuffer(memory_.data(), kBufferSize);
    stream.open(path_, std::ios_base::out | std::ios_base::binary);
    ASSERT_TRUE(stream.isOpen());
  }

  std::array<char, 256> memory_;  // a buffer, and what must not be written to
};

TEST_F(FileStreamTest, PiecesOfAllSizesReachTheFile) {
  for (std::size_t size = 0; size <= 3 * kBufferSize; ++size) {
    FileStream stream;
    open(stream);
    std::string expected;
    for (int i = 0; i < 10; ++i) {
      const std::string piece(size, static_cast<char>('a' + i));
      ASSERT_TRUE(stream.put(piece.data(), static_cast<std::streamsize>(size)));
      expected += piece;
    }
    EXPECT_TRUE(stream.close());
    ASSERT_EQ(readFile(path_), expected) << size;
    ASSERT_EQ(std::count(memory_.begin() + kBufferSize, memory_.end(), kGuard),
              memory_.end() - (memory_.begin() + kBufferSize))
        << size;
  }
}

TEST_F(FileStreamTest, WritesWholeBuffersUntilItIsClosed) {
  FileStream stream;
  open(stream);
  const std::string piece(5, 'p');
  for (std::size_t put = 0; put < 4 * kBufferSize; put += piece.size()) {
    EXPECT_EQ(readFile(path_).size() % kBufferSize, 0U) << put;
    ASSERT_TRUE(stream.put(piece.data(), static_cast<std::streamsize>(piece.size())));
  }
  EXPECT_GE(readFile(path_).size(), 3 * kBufferSize);
  EXPECT_TRUE(stream.close());
}

TEST_F(FileStreamTest, WhatIsNotOpenTakesNothing) {
  FileStream stream;
  EXPECT_TRUE(stream.put("", 0));
  EXPECT_FALSE(stream.put("text", 4));
}

TEST_F(FileStreamTest, LessThanNothingCannotBeWritten) {
  FileStream stream;
  open(stream);
  ASSERT_TRUE(stream.put("text", 4));
  EXPECT_FALSE(stream.put("text", -1));
  EXPECT_TRUE(stream.close());
  EXPECT_EQ(readFile(path_), "text");
}

}  // namespace
}  // namespace Orvane::test
