#pragma once

#include <cstddef>
#include <cstdint>

namespace Orvane {

// A byte sink and source that is open for one thing at a time. The inventory writers put their
// output through it: openForWrite() once, write() or writeEach() in file order, close().
//
// There are two independent ways to the bytes: a stream path (write, read, seek) and a raw path of
// 4096-byte blocks (nextBlock, commitBlock). Not for use by several threads.
class Buffer {
 public:
  Buffer() = default;
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  virtual ~Buffer();

  // Each open succeeds only on a closed buffer; otherwise false, and nothing changes.
  virtual bool openForWrite();
  virtual bool openForRead();

  // Back to closed, from whatever mode.
  virtual bool close();

  // Bytes pass unchanged. True when all of them were transferred; how a shortfall is reported is
  // the derived class's contract.
  virtual bool write(const char* data, int length) = 0;
  virtual bool read(char* data, int length) = 0;

  // `whence`: 0 from the beginning, 1 from the current position, 2 from the end. Returns the new
  // position, or -1.
  virtual long seek(long offset, int whence) = 0;

  virtual bool openRawRead();
  virtual bool openRawWrite();

  // Raw reading: the next piece of the input and its length, 0 at the end. Otherwise: the block to
  // fill and its capacity. The block belongs to the buffer and is good until the next call.
  virtual bool nextBlock(char** data, unsigned* length) = 0;

  // Raw writing: puts out the first `length` bytes of the block.
  virtual bool commitBlock(int length) = 0;

  // Writes `count` pieces of `length` bytes, which stand one right behind the other: calls write()
  // with each, whatever the calls before returned. True when all returned true. Where a derived
  // class does it without write(), whatever derives from that and overrides one overrides both.
  virtual bool writeEach(const char* data, int length, std::size_t count);

 protected:
  static constexpr std::uint32_t kClosed = 0;
  static constexpr std::uint32_t kStreamRead = 1;
  static constexpr std::uint32_t kStreamWrite = 2;
  static constexpr std::uint32_t kRawRead = 3;
  static constexpr std::uint32_t kRawWrite = 4;

  std::uint32_t mode = kClosed;

  // Bytes delivered by nextBlock in raw reading, over the whole life of the buffer: reopening does
  // not reset it.
  std::uint64_t blockCounter = 0;

 private:
  bool enter(std::uint32_t newMode);
};

}  // namespace Orvane
