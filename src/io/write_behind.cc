#include "io/write_behind.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

namespace Orvane {

// All of it is advice: where it isn't taken, the file is written as any other. What the disk hasn't
// got when it is to be forgotten stays, since to wait would take longer on a slow disk.
void WriteBehind::follow(int fd) noexcept {
  const std::int64_t end = ::lseek(fd, 0, SEEK_CUR);
  if (end <= std::max(followed_, kKept)) return;
  static_cast<void>(::sync_file_range(fd, followed_, end - followed_, SYNC_FILE_RANGE_WRITE));
  const std::int64_t forgotten = std::max<std::int64_t>(followed_ - kKept, 0);
  static_cast<void>(::posix_fadvise(fd, forgotten, end - kKept - forgotten, POSIX_FADV_DONTNEED));
  followed_ = end;
}

}  // namespace Orvane
