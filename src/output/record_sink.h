#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <type_traits>

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
  // false when there are no more, and `make(block)` makes them: `block.records`, a vector of arrays
  // of bytes. Where that is worth it, two threads do that: see forEachMadeAhead.
  template <typename Block, typename Take, typename Make>
  void putBlocks(std::size_t count, Take take, Make make) {
    const auto putBlock = [&](const Block& block) {
      const auto* const bytes = reinterpret_cast<const char*>(block.records.data());
      constexpr int kSize = sizeof(block.records[0]);
      static_assert(kSize == std::tuple_size_v<std::decay_t<decltype(block.records[0])>>);
      buffer_.writeEach(bytes, kSize, block.records.size());
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
