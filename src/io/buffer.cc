#include "io/buffer.h"

namespace Orvane {

Buffer::~Buffer() = default;

bool Buffer::enter(std::uint32_t newMode) {
  if (mode != kClosed) return false;
  mode = newMode;
  return true;
}

bool Buffer::openForWrite() {
  return enter(kStreamWrite);
}

bool Buffer::openForRead() {
  return enter(kStreamRead);
}

bool Buffer::close() {
  mode = kClosed;
  return true;
}

bool Buffer::writeEach(const char* data, int length, std::size_t count) {
  bool areWritten = true;
  for (; count > 0; --count, data += length) areWritten = write(data, length) && areWritten;
  return areWritten;
}

bool Buffer::openRawRead() {
  return enter(kRawRead);
}

bool Buffer::openRawWrite() {
  return enter(kRawWrite);
}

}  // namespace Orvane
