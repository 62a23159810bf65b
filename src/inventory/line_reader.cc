#include "inventory/line_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "inventory/line_read_error.h"

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
    const int reason = errno;  // before memory is taken for the exception
    throw LineReadError(path_, lineNumber_ + 1, reason);
  }
  end_ += static_cast<std::size_t>(got);
  bytesRead_ += static_cast<std::size_t>(got);
  return got != 0;
}

// Takes the next line if its line feed is in the block; the first `searched` unread bytes are known
// to hold none.
bool LineReader::takeLine(std::string_view& line, std::size_t searched) {
  const std::string_view unread(block_.get() + begin_, end_ - begin_);
  const std::size_t length = unread.find('\n', searched);
  if (length == std::string_view::npos) return false;
  line = unread.substr(0, length);
  begin_ += length + 1;
  ++lineNumber_;
  return true;
}

std::string_view LineReader::next() {
  if (atEnd_) return {};
  std::string_view line;
  std::size_t searched = 0;
  while (!takeLine(line, searched)) {
    searched = end_ - begin_;
    if (!fill()) {
      atEnd_ = true;
      ++lineNumber_;
      return {block_.get() + begin_, end_ - begin_};
    }
  }
  return line;
}

std::size_t LineReader::expectedLines() const {
  struct stat status {};
  const std::size_t used = bytesRead_ - (end_ - begin_);
  if (used == 0) return 0;
  static_cast<void>(::fstat(descriptor_, &status));  // where it fails, the size remains 0
  // A hole, which may be of any size, has no lines to speak of.
  constexpr std::size_t kBlock = 512;
  const std::size_t size = std::min(static_cast<std::size_t>(status.st_size),
                                    static_cast<std::size_t>(status.st_blocks) * kBlock);
  const std::size_t left = size > used ? size - used : 0;
  return left / std::max<std::size_t>(used / lineNumber_, 16);
}

std::size_t LineReader::nextLines(std::span<std::string_view> lines) {
  lines[0] = next();
  std::size_t count = 1;
  while (count < lines.size() && takeLine(lines[count], 0)) ++count;
  return count;
}

}  // namespace Orvane
