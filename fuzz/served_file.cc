#include "served_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "fail.h"

namespace Orvane::fuzz {
namespace {

// A pipe keeps every piece in a page of its own.
constexpr int kPipeSize = 1 << 20;
constexpr std::size_t kPieces = kPipeSize / 4096;

void writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    require(written > 0, "an input cannot be served: no memory file or pipe takes it");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

ServedFile::ServedFile(int descriptor)
    : descriptor_(descriptor), path_("/proc/self/fd/" + std::to_string(descriptor)) {}

ServedFile::ServedFile(ServedFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), path_(std::move(other.path_)) {}

ServedFile::~ServedFile() {
  if (descriptor_ != -1) ::close(descriptor_);
}

ServedFile ServedFile::whole(std::string_view content) {
  const int descriptor = ::memfd_create("input", MFD_CLOEXEC);
  require(descriptor != -1, "no memory file");
  ServedFile file(descriptor);
  writeAll(descriptor, content);
  return file;
}

ServedFile ServedFile::inPieces(std::string_view content, std::size_t piece) {
  int ends[2] = {-1, -1};
  // In packet mode a read ends where a write did.
  require(::pipe2(ends, O_CLOEXEC | O_DIRECT | O_NONBLOCK) == 0, "no pipe");
  ServedFile file(ends[0]);
  require(::fcntl(ends[1], F_SETPIPE_SZ, kPipeSize) != -1, "no large pipe");
  const std::size_t step = std::max({piece, std::size_t{1}, content.size() / kPieces + 1});
  for (; !content.empty(); content.remove_prefix(std::min(step, content.size()))) {
    writeAll(ends[1], content.substr(0, step));
  }
  ::close(ends[1]);
  return file;
}

std::string ServedFile::content() const {
  struct stat status {};
  require(::fstat(descriptor_, &status) == 0, "no size of a memory file");
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t got = ::pread(descriptor_, bytes.data(), bytes.size(), 0);
  require(got == static_cast<ssize_t>(bytes.size()), "a memory file cannot be read");
  return bytes;
}

}  // namespace Orvane::fuzz
