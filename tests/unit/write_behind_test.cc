#include "io/write_behind.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "test_support.h"

namespace Orvane::test {
namespace {

constexpr std::int64_t kMebibyte = std::int64_t{1} << 20;

// A file that the disk has got whole whenever it is asked which of it is in memory.
class WriteBehindTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(fd_, -1);
    append(1);
    ASSERT_EQ(::posix_fadvise(fd_, 0, 0, POSIX_FADV_DONTNEED), 0);
    canForget_ = mebibytesInMemory(0, 1) == 0;  // a file system may be all memory
  }
  void TearDown() override { ::close(fd_); }

  void append(std::int64_t mebibytes) {
    const std::string piece(kMebibyte, 'w');
    for (std::int64_t i = 0; i < mebibytes; ++i) {
      ASSERT_EQ(::write(fd_, piece.data(), piece.size()), kMebibyte);
    }
    ASSERT_EQ(::fdatasync(fd_), 0);
  }

  // Of the mebibytes from `begin` to `end`, how many are in memory, rounded up.
  std::int64_t mebibytesInMemory(std::int64_t begin, std::int64_t end) {
    const auto size = static_cast<std::size_t>((end - begin) * kMebibyte);
    void* const memory =
        ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd_, static_cast<off_t>(begin * kMebibyte));
    EXPECT_NE(memory, MAP_FAILED);
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> pages(size / pageSize);
    EXPECT_EQ(::mincore(memory, size, pages.data()), 0);
    ::munmap(memory, size);
    const auto count = std::count_if(pages.begin(), pages.end(),
                                     [](unsigned char page) { return (page & 1) != 0; });
    const auto perMebibyte = kMebibyte / static_cast<std::int64_t>(pageSize);
    return (count + perMebibyte - 1) / perMebibyte;
  }

  static constexpr std::int64_t kKept = WriteBehind::kKept / kMebibyte;

  const TempDir dir_;
  const int fd_ = ::open((dir_ / "file").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  WriteBehind behind_;
  bool canForget_ = false;
};

TEST_F(WriteBehindTest, AFileThatIsNotLargeStaysInMemory) {
  append(kKept - 1);
  behind_.follow(fd_);
  EXPECT_EQ(mebibytesInMemory(1, kKept), kKept - 1);  // the first one went in the setup
}

TEST_F(WriteBehindTest, OfALargeFileTheEndStaysInMemory) {
  std::int64_t end = 1;
  for (; end <= kKept + 6; end += 2) {
    append(2);
    behind_.follow(fd_);
  }
  EXPECT_EQ(mebibytesInMemory(0, end - kKept), canForget_ ? 0 : end - kKept);
  EXPECT_EQ(mebibytesInMemory(end - kKept, end), kKept);
  EXPECT_EQ(::lseek(fd_, 0, SEEK_CUR), end * kMebibyte);
}

TEST_F(WriteBehindTest, BytesWrittenOnceMoreAreLeftAlone) {
  append(kKept + 24);
  behind_.follow(fd_);
  ASSERT_EQ(::lseek(fd_, 0, SEEK_SET), 0);
  append(kKept + 4);
  behind_.follow(fd_);
  append(2);
  behind_.follow(fd_);
  EXPECT_EQ(mebibytesInMemory(0, kKept + 6), kKept + 6);
}

}  // namespace
}  // namespace Orvane::test
