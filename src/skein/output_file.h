#pragma once

#include <memory>
#include <string>

#include "skein/byte_sink.h"

namespace Orvane {

// A file that is there whole or not at all: written under another name beside it and renamed in the
// end. What is there already and is no regular file (a device, a pipe) is written to directly.
class OutputFile {
 public:
  // Opens the output `name`. Nothing, and the reason in `error`, if that fails or if it is the same
  // file as `input`, which would be lost.
  static std::unique_ptr<OutputFile> create(const std::string& name, const std::string& input,
                                            std::string& error);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Without commit(), leaves nothing behind.
  ~OutputFile();

  ByteSink& sink() { return *sink_; }

  // Closes the file and puts it in its place. False, and the reason in `error`, if any of it or an
  // earlier write failed; then nothing is left behind.
  bool commit(std::string& error);

 private:
  OutputFile(int fd, std::string name, std::string temporary);

  int fd_;
  std::string name_;
  std::string temporary_;  // empty when written to directly
  std::unique_ptr<FdSink> sink_;
};

}  // namespace Orvane
