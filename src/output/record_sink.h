#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "io/buffer.h"
#include "output/inventory_format.h"
#include "tree/made_ahead.h"
#include "tree/parallel.h"

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

  // The same for `count` records of which each call of `encodeNext(block)` encodes the next ones,
  // by another thread where that is worth it; none when all are. A Block is a sequence of them.
  template <typename Block, typename EncodeNext>
  void putBlocks(std::size_t count, EncodeNext encodeNext) {
    const auto encode = [&](Block& block) {
      encodeNext(block);
      return !block.empty();
    };
    const auto putBlock = [&](const Block& block) {
      for (const auto& record : block) put(record);
    };
    if (workersFor(count) > 1) {
      forEachMadeAhead<Block>(encode, putBlock);
    } else {
      for (Block block; encode(block);) putBlock(block);
    }
  }

 private:
  Buffer& buffer_;
};

}  // namespace Orvane
