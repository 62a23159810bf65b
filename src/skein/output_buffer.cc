#include "skein/output_buffer.h"

namespace Orvane {

void OutputBuffer::putLarge(std::string_view text) {
  flush();
  if (text.size() <= kCapacity) {
    used_ = text.copy(buffer_->data(), kCapacity);
  } else if (!failed_) {
    failed_ = !sink_.put(text);
  }
}

}  // namespace Orvane
