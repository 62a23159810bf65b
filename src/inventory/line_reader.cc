#include "inventory/line_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <utility>

#include "errors/ov_read_error.h"
#include "errors/printable.h"

namespace Orvane {

namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 17;

int openFile(const char* path) {
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC);
  if (descriptor == -1) return -1;
  struct stat status {};
  if (::fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode)) return descriptor;
  ::close(descriptor);
  return -1;
}

}  // namespace

LineReader::LineReader(const char* path) : path_(path), descriptor_(openFile(path)) {}

LineReader::~LineReader() {
  if (isOpen()) ::close(descriptor_);
}

// Adds to the unread part of the block what one read gives. False at the end of the file.
bool LineReader::fill() {
  const std::size_t unread = end_ - begin_;
  if (unread == capacity_) {
    const std::size_t capacity = std::max(kBlockSize, 2 * capacity_);
    auto grown = std::make_unique_for_overwrite<char[]>(capacity);
    std::copy(block_.get() + begin_, block_.get() + end_, grown.get());
    block_ = std::move(grown);
    capacity_ = capacity;
  } else if (begin_ > 0) {
    std::memmove(block_.get(), block_.get() + begin_, unread);
  }
  begin_ = 0;
  end_ = unread;
  ssize_t got = 0;
  do {
    got = ::read(descriptor_, block_.get() + end_, capacity_ - end_);
  } while (got == -1 && errno == EINTR);
  if (got == -1) {
    const int reason = errno;
    std::cerr << printable(path_) << ":" << lineNumber_
              << ": cannot read on: " << std::strerror(reason) << std::endl;
    throw OVReadError(OVReadError::kShortRead);
  }
  end_ += static_cast<std::size_t>(got);
  return got != 0;
}

std::string_view LineReader::next() {
  if (atEnd_) return {};
  ++lineNumber_;
  std::size_t searched = 0;  // bytes of the unread part known to hold no line feed
  while (true) {
    const std::string_view unread(block_.get() + begin_, end_ - begin_);
    const std::size_t length = unread.find('\n', searched);
    if (length != std::string_view::npos) {
      begin_ += length + 1;
      return unread.substr(0, length);
    }
    searched = unread.size();
    if (!fill()) {
      atEnd_ = true;
      return {block_.get() + begin_, end_ - begin_};
    }
  }
}

}  // namespace Orvane
