#include "errors/ov_error.h"

namespace Orvane {

std::string OVError::getMessage() const {
  return message;
}

OVError::~OVError() = default;

}  // namespace Orvane
