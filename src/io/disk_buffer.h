#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "io/buffer.h"
#include "io/file_stream.h"

namespace Orvane {

// The Buffer on a file. Construction opens nothing; every open uses the path given there.
//
// Failures of the stream path are thrown: OVWriteError by write(), writeEach() and close(),
// OVReadError by read(). Any other exception inside writing or reading ends the program. Failures
// of the raw path return false and leave the buffer closed, its descriptor still open until close()
// or destruction.
class DiskBuffer : public Buffer {
 public:
  // Capacity of the raw path's block, and the file offset multiple at which raw reads end.
  static constexpr unsigned kBlockSize = 4096;

  explicit DiskBuffer(const std::string& fileName);
  explicit DiskBuffer(const char* fileName);

  // Closes whatever is open, reporting nothing: whoever needs to know calls close() first.
  ~DiskBuffer() override;

  // Truncates or creates the file. When the open fails, false, and the mode stays "stream write"
  // until close(), so that the next write() throws.
  bool openForWrite() override;
  bool openForRead() override;

  // Always leaves the buffer closed. Throws OVWriteError when the bytes that the stream still held
  // could not be written: a file smaller than the stream's buffer meets a full disk only here.
  // Otherwise true.
  bool close() override;

  // Both throw unless all `length` bytes were transferred; also when the stream isn't open for it.
  bool write(const char* data, int length) override;
  bool read(char* data, int length) override;

  // Takes all at once, without a call of write(): the same bytes reach the file in the same pieces.
  bool writeEach(const char* data, int length, std::size_t count) override;

  // Any other `whence` counts from the beginning. -1 also when the buffer isn't open as a stream.
  long seek(long offset, int whence) override;

  bool openRawRead() override;
  bool openRawWrite() override;
  bool nextBlock(char** data, unsigned* length) override;
  bool commitBlock(int length) override;

 private:
  bool openStream(std::ios_base::openmode direction);
  void put(const char* data, std::streamsize size);
  bool openDescriptor(int flags);
  void closeDescriptor();

  int fd_ = -1;
  std::string fileName_;
  std::unique_ptr<char[]> streamBuffer_;
  FileStream stream_;
  bool streamWrites_ = false;   // what the stream was last opened for, whatever became of the mode
  std::uint64_t fileSize_ = 0;  // taken when the raw path is opened for reading
  std::uint64_t position_ = 0;  // bytes moved through the raw path since then
  std::array<char, kBlockSize> block_;
};

}  // namespace Orvane
