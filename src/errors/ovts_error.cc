#include "errors/ovts_error.h"

#include "errors/ovts_error_initializer.h"

namespace Orvane {

// The order of these two definitions is the order of their construction: the table must exist
// before the initializer writes to it.
std::vector<std::string> OVTSError::messages(kMessageCount);

namespace {
const OVTSErrorInitializer kInitializer;
}  // namespace

OVTSError::OVTSError(std::int32_t code) : code_(code) {}

std::string OVTSError::getMessage() const {
  // A code below 0 becomes a number beyond every table.
  const auto number = static_cast<std::size_t>(code_);
  const std::string text =
      number < messages.size() ? messages[number] : std::string("Undefined Error Code ");
  return text + ":  " + detail;
}

OVTSError::~OVTSError() = default;

}  // namespace Orvane
