#include "io/buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

#include "io/disk_buffer.h"

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

TEST(Buffer, IsDeletedThroughTheBase) {
  EXPECT_TRUE(std::has_virtual_destructor_v<Buffer>);
  EXPECT_TRUE((std::is_convertible_v<DiskBuffer*, Buffer*>));
}

}  // namespace
}  // namespace Orvane
