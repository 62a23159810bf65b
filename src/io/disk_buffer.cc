#include "io/disk_buffer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <exception>

#include "errors/ov_read_error.h"
#include "errors/ov_write_error.h"

namespace Orvane {

namespace {

// As much as a large page: of a file that is written in such pieces, the system keeps the contents
// in large pages, too, which takes half the time. Only what is used of it takes memory.
constexpr std::size_t kStreamBufferSize = std::size_t{1} << 21;

std::ios_base::seekdir direction(int whence) {
  switch (whence) {
    case 1:
      return std::ios_base::cur;
    case 2:
      return std::ios_base::end;
    default:
      return std::ios_base::beg;
  }
}

}  // namespace

DiskBuffer::DiskBuffer(const std::string& fileName)
    : fileName_(fileName),
      streamBuffer_(std::make_unique_for_overwrite<char[]>(kStreamBufferSize)) {}

DiskBuffer::DiskBuffer(const char* fileName) : DiskBuffer(std::string(fileName)) {}

DiskBuffer::~DiskBuffer() {
  closeDescriptor();
}

void DiskBuffer::closeDescriptor() {
  if (fd_ == -1) return;
  ::close(fd_);
  fd_ = -1;
}

bool DiskBuffer::openStream(std::ios_base::openmode direction) {
  stream_.setBuffer(streamBuffer_.get(), kStreamBufferSize);
  if (!stream_.isOpen()) streamWrites_ = direction == std::ios_base::out;
  stream_.open(fileName_, direction | std::ios_base::binary);
  return stream_.isOpen();
}

bool DiskBuffer::openForWrite() {
  return Buffer::openForWrite() && openStream(std::ios_base::out);
}

bool DiskBuffer::openForRead() {
  return Buffer::openForRead() && openStream(std::ios_base::in);
}

bool DiskBuffer::close() {
  Buffer::close();
  const bool flushed = !stream_.isOpen() || stream_.close();
  closeDescriptor();
  if (streamWrites_ && !flushed) throw OVWriteError(OVWriteError::kShortWrite);
  return true;
}

bool DiskBuffer::write(const char* data, int length) {
  put(data, length);
  return true;
}

bool DiskBuffer::writeEach(const char* data, int length, std::size_t count) {
  if (count > 0) put(data, length * static_cast<std::streamsize>(count));
  return true;
}

void DiskBuffer::put(const char* data, std::streamsize size) {
  try {
    if (!stream_.good() || !stream_.put(data, size)) stream_.setstate(std::ios_base::badbit);
  } catch (...) {
    std::terminate();
  }
  if (!stream_.good()) throw OVWriteError(OVWriteError::kShortWrite);
}

bool DiskBuffer::read(char* data, int length) {
  try {
    stream_.read(data, length);
  } catch (...) {
    std::terminate();
  }
  if (!stream_.good()) throw OVReadError(OVReadError::kShortRead);
  return true;
}

long DiskBuffer::seek(long offset, int whence) {
  if (mode != kStreamRead && mode != kStreamWrite) return -1;
  // There is one position for both directions, and none, which is -1, when the stream has failed.
  stream_.seekg(offset, direction(whence));
  return static_cast<long>(stream_.tellg());
}

bool DiskBuffer::openDescriptor(int flags) {
  constexpr mode_t kPermissions = 0644;
  closeDescriptor();  // a failed transfer closes the buffer but leaves its descriptor
  fd_ = ::open(fileName_.c_str(), flags, kPermissions);
  if (fd_ == -1) Buffer::close();
  return fd_ != -1;
}

bool DiskBuffer::openRawRead() {
  if (!Buffer::openRawRead() || !openDescriptor(O_RDONLY | O_CLOEXEC)) return false;
  struct stat status {};
  if (::fstat(fd_, &status) != 0) {
    Buffer::close();
    return false;
  }
  fileSize_ = static_cast<std::uint64_t>(status.st_size);
  position_ = 0;
  return true;
}

bool DiskBuffer::openRawWrite() {
  return Buffer::openRawWrite() && openDescriptor(O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
}

bool DiskBuffer::nextBlock(char** data, unsigned* length) {
  *data = block_.data();
  if (mode != kRawRead) {
    *length = kBlockSize;
    return true;
  }
  const std::uint64_t toBoundary = kBlockSize - blockCounter % kBlockSize;
  const std::uint64_t piece = std::min(toBoundary, fileSize_ - position_);
  const ssize_t got = ::read(fd_, block_.data(), piece);
  if (got != static_cast<ssize_t>(piece)) {
    Buffer::close();
    return false;
  }
  position_ += piece;
  blockCounter += piece;
  *length = static_cast<unsigned>(piece);
  return true;
}

bool DiskBuffer::commitBlock(int length) {
  if (mode == kRawRead) return true;
  const bool fits = length >= 0 && static_cast<unsigned>(length) <= kBlockSize;
  if (!fits || ::write(fd_, block_.data(), static_cast<std::size_t>(length)) != length) {
    Buffer::close();
    return false;
  }
  position_ += static_cast<std::uint64_t>(length);
  return true;
}

}  // namespace Orvane
