#pragma once

#include <cstddef>
#include <mutex>

#include "tree/arena.h"

namespace Orvane {

// Room for titles, which stay where they are until the store is destroyed. For several threads.
class TitleStore {
 public:
  // Throws std::bad_alloc.
  char* allocate(std::size_t size) {
    const std::lock_guard lock(allocating_);
    return static_cast<char*>(arena_.allocate(size, 1));
  }

 private:
  std::mutex allocating_;
  Arena arena_;
};

}  // namespace Orvane
