#include "io/buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "io/disk_buffer.h"
#include "recording_buffer.h"

namespace Orvane {
namespace {

// The least that makes a Buffer.
class BareBuffer : public Buffer {
 public:
  bool write(const char* /*data*/, int /*length*/) override { return false; }
  bool read(char* /*data*/, int /*length*/) override { return false; }
  long seek(long /*offset*/, int /*whence*/) override { return -1; }
  bool nextBlock(char** /*data*/, unsigned* /*length*/) override { return false; }
  bool commitBlock(int /*length*/) override { return false; }
  std::uint32_t currentMode() const { return mode; }
};

TEST(Buffer, EachOpenHasItsMode) {
  BareBuffer buffer;
  EXPECT_EQ(buffer.currentMode(), 0U);
  EXPECT_TRUE(buffer.openForRead());
  EXPECT_EQ(buffer.currentMode(), 1U);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(buffer.currentMode(), 0U);
  EXPECT_TRUE(buffer.openForWrite());
  EXPECT_EQ(buffer.currentMode(), 2U);
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(buffer.openRawRead());
  EXPECT_EQ(buffer.currentMode(), 3U);
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(buffer.openRawWrite());
  EXPECT_EQ(buffer.currentMode(), 4U);
  EXPECT_TRUE(buffer.close());
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(buffer.currentMode(), 0U);
}

TEST(Buffer, OnlyAClosedOneOpens) {
  using Open = bool (Buffer::*)();
  constexpr Open kOpens[] = {&Buffer::openForRead, &Buffer::openForWrite, &Buffer::openRawRead,
                             &Buffer::openRawWrite};
  for (const Open first : kOpens) {
    for (const Open second : kOpens) {
      BareBuffer buffer;
      EXPECT_TRUE((buffer.*first)());
      const std::uint32_t mode = buffer.currentMode();
      EXPECT_FALSE((buffer.*second)());
      EXPECT_EQ(buffer.currentMode(), mode);
    }
  }
}

TEST(Buffer, SeveralPiecesAreWrittenOneByOne) {
  test::RecordingBuffer buffer;
  EXPECT_TRUE(buffer.writeEach("onetwosix", 3, 3));
  EXPECT_EQ(buffer.content, "onetwosix");
  EXPECT_EQ(buffer.calls, (std::vector<std::string>{"write 3", "write 3", "write 3"}));
  EXPECT_TRUE(buffer.writeEach("onetwosix", 3, 0));
  EXPECT_EQ(buffer.calls.size(), 3U);
}

TEST(Buffer, PiecesAreWrittenWhateverBecomesOfThoseBefore) {
  class Refusing : public BareBuffer {
   public:
    bool write(const char* /*data*/, int /*length*/) override { return ++writes != 2; }
    int writes = 0;
  };
  Refusing buffer;
  EXPECT_FALSE(buffer.writeEach("onetwosix", 3, 3));
  EXPECT_EQ(buffer.writes, 3);
  EXPECT_TRUE(buffer.writeEach("onetwosix", 3, 3));
}

TEST(Buffer, IsDeletedThroughTheBase) {
  EXPECT_TRUE(std::has_virtual_destructor_v<Buffer>);
  EXPECT_TRUE((std::is_convertible_v<DiskBuffer*, Buffer*>));
}

}  // namespace
}  // namespace Orvane
