#include "io/write_behind.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "test_support.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kMebibyte = std::int64_t{1} << 20;

// A part of a file, in bytes.
struct Part {
  std::int64_t begin;
  std::int64_t end;

  bool operator==(const Part&) const = default;
};

// What the system was told, in order.
struct Advice {
  std::vector<Part> toTake;    // by the disk, at once
  std::vector<Part> toForget;  // as far as the disk has it
};

Advice* adviceGiven = nullptr;  // where to write it down, if at all

// A file that the disk has got whole whenever it is followed. The system may take memory from any
// file whenever it likes, so that what it was told is what can be known exactly.
class WriteBehindTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(fd_, -1);
    append(1);
    ASSERT_EQ(::posix_fadvise(fd_, 0, 0, POSIX_FADV_DONTNEED), 0);
    canForget_ = mebibytesInMemory(0, 1) == 0;  // a file system may be all memory
    adviceGiven = &advice_;
  }
  void TearDown() override {
    adviceGiven = nullptr;
    ::close(fd_);
  }

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

  static Part mebibytes(std::int64_t begin, std::int64_t end) {
    return {begin * kMebibyte, end * kMebibyte};
  }

  static constexpr std::int64_t kKept = WriteBehind::kKept / kMebibyte;

  const TempDir dir_;
  const int fd_ = ::open((dir_ / "file").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  WriteBehind behind_;
  Advice advice_;
  bool canForget_ = false;
};

TEST_F(WriteBehindTest, OfAFileThatIsNotLargeNothingIsSaid) {
  append(kKept - 1);
  behind_.follow(fd_);
  EXPECT_THAT(advice_.toTake, IsEmpty());
  EXPECT_THAT(advice_.toForget, IsEmpty());
}

TEST_F(WriteBehindTest, AllButTheEndOfALargeFileIsForgotten) {
  append(kKept + 2);  // behind the one from the setup
  behind_.follow(fd_);
  append(2);
  behind_.follow(fd_);
  append(kKept + 4);
  behind_.follow(fd_);
  EXPECT_THAT(advice_.toTake, ElementsAre(mebibytes(0, kKept + 3), mebibytes(kKept + 3, kKept + 5),
                                          mebibytes(kKept + 5, 2 * kKept + 9)));
  EXPECT_THAT(advice_.toForget,
              ElementsAre(mebibytes(0, 3), mebibytes(3, 5), mebibytes(5, kKept + 9)));
  EXPECT_EQ(::lseek(fd_, 0, SEEK_CUR), (2 * kKept + 9) * kMebibyte);
}

// Of 24 MiB at least half, if the file system can forget at all.
TEST_F(WriteBehindTest, WhatIsToBeForgottenLeavesTheMemory) {
  append(kKept + 23);
  behind_.follow(fd_);
  EXPECT_EQ(mebibytesInMemory(0, 24) < 12, canForget_);
}

TEST_F(WriteBehindTest, OfBytesWrittenOnceMoreNothingIsSaid) {
  append(kKept + 24);
  behind_.follow(fd_);
  advice_ = {};
  ASSERT_EQ(::lseek(fd_, 0, SEEK_SET), 0);
  append(kKept + 4);
  behind_.follow(fd_);
  append(2);
  behind_.follow(fd_);
  EXPECT_THAT(advice_.toTake, IsEmpty());
  EXPECT_THAT(advice_.toForget, IsEmpty());
}

}  // namespace
}  // namespace Orvane::test

// In the place of the C library's, for the whole program.

extern "C" int posix_fadvise(int fd, off_t offset, off_t length, int advice) noexcept {
  if (Orvane::test::adviceGiven != nullptr && advice == POSIX_FADV_DONTNEED) {
    Orvane::test::adviceGiven->toForget.push_back({offset, offset + length});
  }
  // The system's own call tells of failures as all do, this function by what it returns.
  return ::syscall(SYS_fadvise64, fd, offset, length, advice) == 0 ? 0 : errno;
}

extern "C" int sync_file_range(int fd, off64_t offset, off64_t length, unsigned flags) {
  if (Orvane::test::adviceGiven != nullptr && flags == SYNC_FILE_RANGE_WRITE) {
    Orvane::test::adviceGiven->toTake.push_back({offset, offset + length});
  }
  return static_cast<int>(::syscall(SYS_sync_file_range, fd, offset, length, flags));
}
