#pragma once

#include <cstdint>
#include <span>

#include "io/buffer.h"
#include "output/inventory_format.h"

namespace Orvane {

// Puts encoded records into an open Buffer, one write each. Errors pass through.
class RecordSink {
 public:
  explicit RecordSink(Buffer& buffer) : buffer_(buffer) {}

  void put(std::span<const std::uint8_t> bytes) {
    buffer_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
  }

  // The file header and each table descriptor go out as writes of their own.
  void putHeader(std::span<const std::uint8_t> header) {
    static_assert(kFileHeaderSize == kTableDescriptorSize);
    for (; !header.empty(); header = header.subspan(kFileHeaderSize)) {
      put(header.first(kFileHeaderSize));
    }
  }

 private:
  Buffer& buffer_;
};

}  // namespace Orvane
