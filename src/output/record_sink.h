#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
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

  // The same for `count` records, block by block: `take(block)` says which come next, or returns
  // false when there are no more, `make(block)` makes them, and `bytesOf(record)` is what goes out
  // of each of `block.records`. Where that is worth it, two threads do that: see forEachMadeAhead.
  template <typename Block, typename Take, typename Make, typename BytesOf = std::identity>
  void putBlocks(std::size_t count, Take take, Make make, BytesOf bytesOf = {}) {
    const auto putBlock = [&](const Block& block) {
      for (const auto& record : block.records) put(bytesOf(record));
    };
    if (workersFor(count) > 1) {
      forEachMadeAhead<Block>(take, make, putBlock);
      return;
    }
    for (Block block; take(block);) {
      make(block);
      putBlock(block);
    }
  }

 private:
  Buffer& buffer_;
};

}  // namespace Orvane
