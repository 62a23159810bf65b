#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>

#include "skein/byte_sink.h"

namespace Orvane {

// Collects output and hands it on in large pieces. Everything that a verb prints goes through one.
// Once the sink has refused a piece, failed() is true and further output is dropped: long loops
// look at it to stop early, and whoever owns the sink reports the reason. Nothing is handed on by
// the destructor; call flush().
class OutputBuffer {
 public:
  explicit OutputBuffer(ByteSink& sink)
      : sink_(sink), buffer_(std::make_unique_for_overwrite<Bytes>()) {}
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;
  ~OutputBuffer() = default;

  void put(std::string_view text) {
    if (text.size() > kCapacity - used_) {
      putLarge(text);
      return;
    }
    used_ += text.copy(buffer_->data() + used_, text.size());
  }

  void put(char c) {
    if (used_ == kCapacity) flush();
    (*buffer_)[used_++] = c;
  }

  // `count` times the same character.
  void fill(char c, std::size_t count) {
    while (count-- > 0) put(c);
  }

  void number(std::uint64_t value) {
    if (kCapacity - used_ < kMaxDigits) flush();
    char* const begin = buffer_->data() + used_;
    used_ += static_cast<std::size_t>(std::to_chars(begin, begin + kMaxDigits, value).ptr - begin);
  }

  // Lower-case hexadecimal, at least `width` digits.
  void hex(std::uint64_t value, std::size_t width) {
    std::array<char, kMaxDigits> digits;
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
    const auto length = static_cast<std::size_t>(end - digits.data());
    if (length < width) fill('0', width - length);
    if (kCapacity - used_ < length) flush();
    std::memcpy(buffer_->data() + used_, digits.data(), length);
    used_ += length;
  }

  // Hands on what is there. False if that, or anything before, failed.
  bool flush() {
    if (!failed_ && used_ != 0) failed_ = !sink_.put({buffer_->data(), used_});
    used_ = 0;
    return !failed_;
  }

  bool failed() const { return failed_; }

 private:
  static constexpr std::size_t kCapacity = std::size_t{1} << 17;
  static constexpr std::size_t kMaxDigits = 20;
  using Bytes = std::array<char, kCapacity>;

  // What does not fit behind what is there already.
  void putLarge(std::string_view text);

  ByteSink& sink_;
  std::unique_ptr<Bytes> buffer_;
  std::size_t used_ = 0;
  bool failed_ = false;
};

}  // namespace Orvane
