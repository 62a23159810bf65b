#include "skein/byte_sink.h"

#include <unistd.h>

#include <cerrno>

namespace Orvane {

bool FdSink::put(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd_, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      error_ = errno;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace Orvane
