// Where output goes in the end.
#pragma once

#include <string>
#include <string_view>

namespace Orvane {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // Takes all of `bytes`, or returns false; after that it is not called again.
  virtual bool put(std::string_view bytes) = 0;
};

// Collects output in memory.
class StringSink : public ByteSink {
 public:
  bool put(std::string_view bytes) override {
    text_ += bytes;
    return true;
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

// Drops output.
class NullSink : public ByteSink {
 public:
  bool put(std::string_view) override { return true; }
};

// Writes to a file descriptor, which it does not own.
class FdSink : public ByteSink {
 public:
  explicit FdSink(int fd) : fd_(fd) {}

  bool put(std::string_view bytes) override;

  // The errno of the write that failed, or 0.
  int error() const { return error_; }

 private:
  int fd_;
  int error_ = 0;
};

}  // namespace Orvane
