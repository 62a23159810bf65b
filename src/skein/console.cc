#include "skein/console.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "skein/exit_status.h"

namespace Orvane {

Console::Console(const CommonOptions& options)
    : outSink_(STDOUT_FILENO),
      errSink_(STDERR_FILENO),
      out_(outSink_),
      err_(errSink_),
      diagnostics_(err_, out_, options.quiet),
      printing_{out_,           diagnostics_,
                options.format, Style::forOutput(options.color, STDOUT_FILENO),
                options.quiet,  options.verbose},
      messages_{err_,          diagnostics_,
                Format::kText, Style::forOutput(options.color, STDERR_FILENO),
                options.quiet, options.verbose} {}

int Console::finish(int status) {
  err_.flush();
  if (out_.flush() || outSink_.error() == EPIPE) return status;
  diagnostics_.error("standard output", std::generic_category().message(outSink_.error()));
  return kStatusTrouble;
}

}  // namespace Orvane
