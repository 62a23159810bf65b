#pragma once

#include <string>

namespace Orvane {

// The root of the program's own failures: an error that carries a text to show.
//
// Deliberately not derived from std::exception, so that a handler for standard exceptions (such as
// the XML reader's) never swallows a failed output write.
class OVError {
 public:
  OVError() = default;
  OVError(const OVError&) = default;
  OVError& operator=(const OVError&) = default;

  // A copy of the text to show; empty after default construction.
  virtual std::string getMessage() const;

  virtual ~OVError();

 protected:
  std::string message;
};

}  // namespace Orvane
