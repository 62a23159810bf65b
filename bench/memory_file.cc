#include "memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace bench {

MemoryFile::MemoryFile() : descriptor_(memfd_create("bench", MFD_CLOEXEC)) {
  if (descriptor_ == -1) throw std::system_error(errno, std::generic_category(), "memfd_create");
  path_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

MemoryFile::~MemoryFile() {
  close(descriptor_);
}

}  // namespace bench
