// How a fuzzer says that something is wrong.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace Orvane::fuzz {

// Ends the process, so that whoever runs the fuzzer keeps the input. Past std::cerr, which may be
// captured.
[[noreturn]] inline void fail(const std::string& what) {
  static_cast<void>(std::fprintf(stderr, "%s\n", what.c_str()));
  std::abort();
}

inline void require(bool holds, const char* what) {
  if (!holds) fail(what);
}

inline void requireEmpty(const std::string& difference) {
  if (!difference.empty()) fail(difference);
}

}  // namespace Orvane::fuzz
