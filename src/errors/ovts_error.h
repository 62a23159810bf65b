#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "errors/ov_error.h"

namespace Orvane {

// An error reported by the remote service, known by its numeric code. Nothing in the inventory
// builder throws it; it belongs to the error vocabulary that the programs around it share.
//
// Derives privately on purpose: a handler for OVError must not catch a service error.
class OVTSError : private OVError {
 public:
  // Any code is accepted; one without a table entry gets the fallback text.
  explicit OVTSError(std::int32_t code);

  // The table's text for the code, then ":  " (two blanks), then `detail`. Codes that are negative
  // or past the table read "Undefined Error Code " (with its blank). Callable from the end of
  // static initialisation to the start of static destruction.
  std::string getMessage() const override;

  ~OVTSError() override;

  // Free text that the thrower adds; empty after construction.
  std::string detail;

 protected:
  static constexpr std::size_t kMessageCount = 47;

  // Indexed by code; entry 0 stays empty, OVTSErrorInitializer fills the others. Read-only after
  // static initialisation.
  static std::vector<std::string> messages;

 private:
  std::int32_t code_;
};

}  // namespace Orvane
