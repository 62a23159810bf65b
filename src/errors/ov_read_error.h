#pragma once

#include <string>

#include "errors/ov_error.h"

namespace Orvane {

// Thrown when fewer bytes than asked for could be read.
class OVReadError : public OVError {
 public:
  static constexpr const char* kShortRead = "Failed to read the full amount of requested data";

  explicit OVReadError(const std::string& text) { message = text; }
};

}  // namespace Orvane
