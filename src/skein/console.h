#pragma once

#include "skein/byte_sink.h"
#include "skein/common_options.h"
#include "skein/diagnostics.h"
#include "skein/inventory_job.h"
#include "skein/output_buffer.h"

namespace Orvane {

// Standard output and standard error of one run of a verb.
class Console {
 public:
  explicit Console(const CommonOptions& options);

  Printing& printing() { return printing_; }

  // The same with standard error in place of standard output, as text: for verbs whose data is not
  // for people.
  Printing& messages() { return messages_; }

  // Hands on what is buffered. Returns `status`, or kStatusTrouble with a message if output was
  // lost. A reader that has gone away is no such loss: it had seen enough.
  int finish(int status);

 private:
  FdSink outSink_;
  FdSink errSink_;
  OutputBuffer out_;
  OutputBuffer err_;
  Diagnostics diagnostics_;
  Printing printing_;
  Printing messages_;
};

}  // namespace Orvane
