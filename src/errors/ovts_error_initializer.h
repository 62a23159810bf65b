#pragma once

#include "errors/ovts_error.h"

namespace Orvane {

// Fills the message table of OVTSError while the program starts. Exactly one instance exists; it
// is defined beside the table, since only within one file is the order of construction certain.
class OVTSErrorInitializer : public OVTSError {
 public:
  OVTSErrorInitializer();
};

}  // namespace Orvane
