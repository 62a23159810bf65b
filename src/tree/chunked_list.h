#pragma once

#include <array>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "tree/arena.h"

namespace Orvane {

// A sequence that is only appended to. It never moves what it holds: growing touches no memory
// twice.
template <typename T>
class ChunkedList {
  static_assert(std::is_trivial_v<T>);

 public:
  // So many values stand together in memory.
  static constexpr std::size_t kChunkSize = 2048 / sizeof(T);

  void push_back(const T& value) {
    const std::size_t place = size_ % kChunkSize;
    if (place == 0) addChunk();
    (*chunks_.back())[place] = value;
    ++size_;
  }

  std::size_t size() const { return size_; }

  const T& operator[](std::size_t index) const {
    return (*chunks_[index / kChunkSize])[index % kChunkSize];
  }

  // Calls `use` with each value in order.
  template <typename Use>
  void forEach(Use use) const {
    std::size_t left = size_;
    for (const Chunk* const chunk : chunks_) {
      const std::size_t count = left < kChunkSize ? left : kChunkSize;
      for (std::size_t i = 0; i < count; ++i) use((*chunk)[i]);
      left -= count;
    }
  }

  void clear() {
    chunks_.clear();
    memory_.clear();
    size_ = 0;
  }

 private:
  using Chunk = std::array<T, kChunkSize>;

  void addChunk() {
    // First the chunk: where there is no room for its address it stays unused.
    auto* const chunk = static_cast<Chunk*>(memory_.allocate(sizeof(Chunk), alignof(Chunk)));
    chunks_.push_back(chunk);
  }

  Arena memory_;
  std::vector<Chunk*> chunks_;
  std::size_t size_ = 0;
};

}  // namespace Orvane
