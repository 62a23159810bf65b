#pragma once

#include <cstddef>
#include <cstring>
#include <string>

#include "errors/ov_read_error.h"
#include "errors/printable.h"

namespace Orvane {

// Thrown when a text file can't be read on.
class LineReadError : public OVReadError {
 public:
  // `reason` is an errno.
  LineReadError(const char* path, std::size_t lineNumber, int reason)
      : OVReadError(kShortRead),
        explanation_(printable(path) + ":" + std::to_string(lineNumber) +
                     ": cannot read on: " + std::strerror(reason)) {}

  // Which file, which line, and why: a line for standard error.
  const std::string& explanation() const { return explanation_; }

 private:
  std::string explanation_;
};

}  // namespace Orvane
