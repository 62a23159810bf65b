#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Orvane::test {

// What a call is to do.
enum class Effect : std::uint8_t {
  kNone,   // its work
  kError,  // fail with Fault::error()
  kShort,  // transfer Fault::shortened() bytes at most
};

// The one fault of this process, as the environment describes it:
//   FAULT_CALL      what it befalls: open, read, write, close or fstat of a file; new (memory by
//                   any operator new), mmap (memory straight from the system, or
//                   moved)
//   FAULT_PATH      the file, as it is named when it is opened
//   FAULT_NTH       which of these calls, counted from 1; with 0 they are only counted
//   FAULT_ONWARD    1: all later ones too
//   FAULT_EFFECT    error; half, one or most: transfer half of the bytes, one, or all but one;
//                   signal; append: first add FAULT_SOURCE to the file
//   FAULT_VALUE     the error or signal number
//   FAULT_SOURCE    a file
//   FAULT_COUNTERS  a file of two 64-bit numbers: the calls so far, and those that the fault
//   befell.
//                   It is up to date however the process ends.
class Fault {
 public:
  static Fault& get();

  bool befalls(std::string_view call) const { return call == call_; }
  bool isFile(const char* path) const { return path_ == path; }

  // Counts a call that befalls() is true of.
  Effect next();

  int error() const { return value_; }
  std::size_t shortened(std::size_t length) const;

 private:
  struct Counters {
    std::uint64_t calls = 0;
    std::uint64_t faults = 0;
  };

  Fault();
  void append() const;

  std::string_view call_;
  std::string_view path_;
  std::string_view effect_;
  std::uint64_t nth_;
  bool onward_;
  int value_;
  Counters ownCounters_;
  Counters* counters_ = &ownCounters_;
};

}  // namespace Orvane::test
