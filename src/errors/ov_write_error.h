#pragma once

#include <string>

#include "errors/ov_error.h"

namespace Orvane {

// Thrown when fewer bytes than asked for could be written.
class OVWriteError : public OVError {
 public:
  static constexpr const char* kShortWrite = "Failed to write the full amount of requested data";

  explicit OVWriteError(const std::string& text) { message = text; }
};

}  // namespace Orvane
