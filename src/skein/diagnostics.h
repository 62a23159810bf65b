#pragma once

#include <string_view>

#include "skein/output_buffer.h"

namespace Orvane {

// Messages for the person at the terminal, on standard error: "skein: FILE: error: MESSAGE".
class Diagnostics {
 public:
  // `out` leads to standard error and is flushed after each message. `before` (standard output, may
  // be the same) is flushed first, so that the two stay in order on a terminal.
  Diagnostics(OutputBuffer& out, OutputBuffer& before, bool quiet)
      : out_(out), before_(before), quiet_(quiet) {}

  void error(std::string_view file, std::string_view message) { put(file, "error", message); }
  // Nothing when quiet.
  void warning(std::string_view file, std::string_view message) {
    if (!quiet_) put(file, "warning", message);
  }

 private:
  void put(std::string_view file, std::string_view level, std::string_view message);

  OutputBuffer& out_;
  OutputBuffer& before_;
  bool quiet_;
};

}  // namespace Orvane
