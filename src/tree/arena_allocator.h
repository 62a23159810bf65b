#pragma once

#include <cstddef>

#include "tree/arena.h"

namespace Orvane {

// For containers whose elements live as long as an arena: what they free stays there. A container
// of trivially destructible elements need not be destroyed, either.
template <typename T>
class ArenaAllocator {
 public:
  using value_type = T;

  explicit ArenaAllocator(Arena& arena) : arena_(&arena) {}
  template <typename U>
  explicit ArenaAllocator(const ArenaAllocator<U>& other) : arena_(other.arena()) {}

  T* allocate(std::size_t count) {
    return static_cast<T*>(arena_->allocate(count * sizeof(T), alignof(T)));
  }
  void deallocate(T* /*memory*/, std::size_t /*count*/) noexcept {}

  Arena* arena() const { return arena_; }

  friend bool operator==(const ArenaAllocator& a, const ArenaAllocator& b) {
    return a.arena_ == b.arena_;
  }

 private:
  Arena* arena_;
};

}  // namespace Orvane
