#include "tree/spare_memory.h"

namespace Orvane {

std::byte* SpareMemory::take(std::size_t size) {
  const std::lock_guard lock(mutex_);
  Piece* best = nullptr;
  for (std::size_t i = 0; i < count_; ++i) {
    Piece& piece = pieces_[i];
    if (piece.size >= size && (best == nullptr || piece.size < best->size)) best = &piece;
  }
  if (best == nullptr) return nullptr;
  std::byte* const memory = best->memory;
  best->memory += size;
  best->size -= size;
  if (best->size == 0) *best = pieces_[--count_];
  return memory;
}

bool SpareMemory::keep(std::byte* memory, std::size_t size) {
  const std::lock_guard lock(mutex_);
  if (count_ == pieces_.size()) return false;
  pieces_[count_++] = {memory, size};
  return true;
}

}  // namespace Orvane
