#pragma once

#include <cstddef>
#include <mutex>

namespace Orvane {

// Gives mapped memory back to the system.
void unmapMemory(std::byte* memory, std::size_t size) noexcept;

// Hands out memory of mappings that are larger than what is asked for: a call that maps waits for
// the pages that other threads are just making, so few calls are worth some unused addresses. For
// several threads.
class MappingPool {
 public:
  MappingPool() = default;
  MappingPool(const MappingPool&) = delete;
  MappingPool& operator=(const MappingPool&) = delete;
  ~MappingPool() { unmapMemory(free_, freeSize_); }

  // `size` bytes, all zero, a multiple of kHugePageSize, at such a multiple and to be made in large
  // pages where the system has them. Whoever takes them is to unmap them, be it after the pool is
  // destroyed. Throws std::bad_alloc.
  std::byte* take(std::size_t size);

 private:
  std::byte* mapAligned(std::size_t size) noexcept;
  void replaceRest(std::byte* memory, std::size_t size) noexcept;

  std::mutex mutex_;
  std::byte* free_ = nullptr;  // the rest of the newest mapping
  std::size_t freeSize_ = 0;
  std::size_t mappedSize_ = 0;  // of all mappings so far, those among them that are no more
};

}  // namespace Orvane
