#include "reader/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "reader/inventory_view.h"

namespace Orvane {
namespace {

constexpr std::size_t kReadSize = std::size_t{1} << 16;

std::string errorText(int number) {
  return std::generic_category().message(number);
}

// How many bytes of a stream that begins with `start` are worth reading: none more if it is no
// inventory, else what the descriptors announce and enough to see that something follows.
std::uint64_t usefulSize(std::span<const std::uint8_t> start) {
  std::string reason;
  const auto view = InventoryView::open(start, reason);
  if (!view) return start.size();
  std::uint64_t end = view->prefixSize();
  for (std::size_t table = 0; table < view->tableCount(); ++table) {
    const auto found = view->descriptor(table);
    if (!found) continue;
    const std::uint64_t length =
        std::uint64_t{found->count} * InventoryView::recordSize(view->layout(), table);
    end = std::max(end + length, std::uint64_t{found->offset} + length);
  }
  return end + kReadSize;
}

}  // namespace

std::optional<MappedFile> MappedFile::open(const std::string& name, std::string& error) {
  const bool standardInput = name == "-";
  const int fd = standardInput ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = errorText(errno);
    return std::nullopt;
  }
  MappedFile file;
  struct stat status {};
  // Where this fails, so does reading, in the same way.
  static_cast<void>(::fstat(fd, &status));
  const auto size = static_cast<std::size_t>(status.st_size);
  // Standard input may stand anywhere in a file; only from its start a mapping is the same. What is
  // no file, or an empty one, has no position or can't be mapped.
  const bool mapped = ::lseek(fd, 0, SEEK_CUR) == 0 && file.map(fd, size);
  const int failure = mapped || file.readAll(fd) ? 0 : errno;
  if (!standardInput) ::close(fd);
  if (failure != 0) {
    error = errorText(failure);
    return std::nullopt;
  }
  return file;
}

bool MappedFile::map(int fd, std::size_t size) {
  void* mapping = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
  if (mapping == MAP_FAILED) return false;
  mapping_ = mapping;
  mappingSize_ = size;
  bytes_ = {static_cast<const std::uint8_t*>(mapping), size};
  return true;
}

bool MappedFile::readAll(int fd) {
  constexpr std::size_t kDescribed = kFileHeaderSize + 2 * kTableDescriptorSize;
  std::uint64_t limit = kDescribed;
  std::size_t filled = 0;
  while (filled < limit) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(kReadSize, limit - filled));
    buffer_.resize(filled + wanted);
    const ssize_t got = ::read(fd, buffer_.data() + filled, wanted);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
    if (filled == kDescribed) limit = usefulSize({buffer_.data(), filled});
  }
  buffer_.resize(filled);
  bytes_ = buffer_;
  return true;
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : mapping_(std::exchange(other.mapping_, nullptr)),
      mappingSize_(std::exchange(other.mappingSize_, 0)),
      buffer_(std::move(other.buffer_)),
      bytes_(std::exchange(other.bytes_, {})) {}

MappedFile::~MappedFile() {
  // Nothing happens where nothing is mapped.
  static_cast<void>(::munmap(mapping_, mappingSize_));
}

}  // namespace Orvane
