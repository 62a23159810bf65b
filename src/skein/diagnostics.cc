#include "skein/diagnostics.h"

#include "reader/text_escape.h"

namespace Orvane {

void Diagnostics::put(std::string_view file, std::string_view level, std::string_view message) {
  before_.flush();
  out_.put("skein: ");
  if (!file.empty()) {
    out_.put(escaped(file));
    out_.put(": ");
  }
  out_.put(level);
  out_.put(": ");
  out_.put(message);
  out_.put('\n');
  out_.flush();
}

}  // namespace Orvane
