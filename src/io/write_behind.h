#pragma once

#include <cstdint>

namespace Orvane {

// Keeps a large file that is being written from taking the system's memory: the disk is to take
// what was written at once, and all but the last kKept bytes are then forgotten, as far as the disk
// has them by then. To make pages for a file takes many times as long as a fast disk does, on a
// virtual machine at least, and pages that others use would have to go for them. On a slow disk it
// may take longer: the system waits where it has too much on the way to it. Nothing happens to
// files of up to kKept bytes.
class WriteBehind {
 public:
  static constexpr std::int64_t kKept = std::int64_t{16} << 20;

  // To be called after every few megabytes that were written through the descriptor, whose position
  // is where they end. Does no harm where there is no position, nor a disk.
  void follow(int fd) noexcept;

 private:
  std::int64_t followed_ = 0;  // where the bytes ended that the disk was last told to take
};

}  // namespace Orvane
