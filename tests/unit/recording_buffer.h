#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "errors/ov_write_error.h"
#include "io/buffer.h"

namespace Orvane::test {

// A Buffer that keeps what is written and logs every call: "openForWrite", "write 16", "close" and
// so on. It can be made to refuse the open, to fail one of the writes as a DiskBuffer does, or to
// say of each that it has failed.
class RecordingBuffer : public Buffer {
 public:
  std::vector<std::string> calls;
  std::string content;
  bool opens = true;
  bool accepts = true;
  std::size_t failingWrite = static_cast<std::size_t>(-1);  // counted from 0

  bool openForWrite() override {
    calls.emplace_back("openForWrite");
    return opens && Buffer::openForWrite();
  }
  bool close() override {
    calls.emplace_back("close");
    return Buffer::close();
  }
  bool write(const char* data, int length) override {
    calls.push_back("write " + std::to_string(length));
    if (writes_++ == failingWrite) throw OVWriteError("no more");
    content.append(data, static_cast<std::size_t>(length));
    return accepts;
  }

  bool openForRead() override { return note("openForRead"); }
  bool read(char* /*data*/, int /*length*/) override { return note("read"); }
  long seek(long /*offset*/, int /*whence*/) override { return note("seek") ? 0 : -1; }
  bool openRawRead() override { return note("openRawRead"); }
  bool openRawWrite() override { return note("openRawWrite"); }
  bool nextBlock(char** /*data*/, unsigned* /*length*/) override { return note("nextBlock"); }
  bool commitBlock(int /*length*/) override { return note("commitBlock"); }

 private:
  bool note(const char* call) {
    calls.emplace_back(call);
    return false;
  }

  std::size_t writes_ = 0;
};

}  // namespace Orvane::test
