#include "tree/spare_memory.h"

#include <algorithm>

namespace Orvane {

SpareMemory::Piece SpareMemory::take(std::size_t size) {
  const std::lock_guard lock(mutex_);
  if (count_ == 0) return {};
  Piece& last = pieces_[count_ - 1];
  const Piece taken = {last.memory, std::min(last.size, size)};
  last.memory += taken.size;
  last.size -= taken.size;
  if (last.size == 0) --count_;
  return taken;
}

bool SpareMemory::keep(Piece piece) {
  const std::lock_guard lock(mutex_);
  if (count_ == pieces_.size()) return false;
  pieces_[count_++] = piece;
  return true;
}

}  // namespace Orvane
