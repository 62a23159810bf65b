#pragma once

#include <dirent.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "errors/ov_read_error.h"
#include "errors/ov_write_error.h"
#include "io/disk_buffer.h"
#include "test_support.h"

namespace Orvane::test {

inline constexpr const char* kWriteMessage = "Failed to write the full amount of requested data";
inline constexpr const char* kReadMessage = "Failed to read the full amount of requested data";

// Shows the mode and the counter, which only derived classes see.
class OpenDiskBuffer : public DiskBuffer {
 public:
  using DiskBuffer::DiskBuffer;
  std::uint32_t currentMode() const { return mode; }
  std::uint64_t counter() const { return blockCounter; }
};

// The number of files that the process has open.
inline std::size_t openDescriptors() {
  DIR* const folder = opendir("/proc/self/fd");
  if (folder == nullptr) throw std::runtime_error("no /proc/self/fd");
  std::size_t count = 0;
  while (readdir(folder) != nullptr) ++count;
  closedir(folder);
  return count;
}

// Expects `operation` to throw an Error with that message.
template <typename Error, typename Operation>
void expectThrown(const Operation& operation, std::string_view message) {
  try {
    operation();
  } catch (const Error& error) {
    EXPECT_EQ(error.getMessage(), message);
    return;
  }
  ADD_FAILURE() << "nothing was thrown";
}

class DiskBufferFixture : public ::testing::Test {
 protected:
  void put(Buffer& buffer, std::string_view text) {
    EXPECT_TRUE(buffer.write(text.data(), static_cast<int>(text.size())));
  }

  void putFails(Buffer& buffer) {
    expectThrown<OVWriteError>([&] { buffer.write("x", 1); }, kWriteMessage);
  }

  // The next `length` bytes.
  std::string get(Buffer& buffer, std::size_t length) {
    std::string text(length, '?');
    EXPECT_TRUE(buffer.read(text.data(), static_cast<int>(length)));
    return text;
  }

  void getFails(Buffer& buffer, std::size_t length) {
    std::string text(length, '?');
    expectThrown<OVReadError>([&] { buffer.read(text.data(), static_cast<int>(length)); },
                              kReadMessage);
  }

  // The length of the next block; its bytes replace `piece`.
  static unsigned nextBlock(Buffer& buffer, std::string& piece) {
    char* data = nullptr;
    unsigned length = 0;
    EXPECT_TRUE(buffer.nextBlock(&data, &length));
    piece.assign(data, length);
    return length;
  }

  const TempDir dir_;
  const std::string path_ = dir_ / "file";
  const std::string unreachable_ = dir_ / "no/such/file";
};

}  // namespace Orvane::test
