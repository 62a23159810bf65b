#include "tree/mapping_pool.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <new>

#include "tree/huge_pages.h"

namespace Orvane {

void unmapMemory(std::byte* memory, std::size_t size) noexcept {
  if (size > 0) ::munmap(memory, size);
}

// Memory at a multiple of the size of a large page: only there it can have large pages.
std::byte* MappingPool::mapAligned(std::size_t size) noexcept {
  // More than is needed: what is before and after goes back.
  const std::size_t mapped = size + kHugePageSize;
  void* const mapping =
      ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) return nullptr;
  auto* const begin = static_cast<std::byte*>(mapping);
  const std::size_t before =
      (kHugePageSize - reinterpret_cast<std::uintptr_t>(begin) % kHugePageSize) % kHugePageSize;
  unmapMemory(begin, before);
  unmapMemory(begin + before + size, mapped - before - size);
  // Advice only: where it isn't taken, ordinary pages do.
  static_cast<void>(::madvise(begin + before, size, MADV_HUGEPAGE));
  mappedSize_ += size;
  return begin + before;
}

void MappingPool::replaceRest(std::byte* memory, std::size_t size) noexcept {
  unmapMemory(free_, freeSize_);
  free_ = memory;
  freeSize_ = size;
}

// A mapping is a fourth of what was mapped before, within bounds, or all that is asked for when
// that is as much: so there are few. What stays unused takes addresses only; where these are short,
// it is given back.
std::byte* MappingPool::take(std::size_t size) {
  constexpr std::size_t kLeast = std::size_t{1} << 24;
  constexpr std::size_t kMost = std::size_t{1} << 28;
  const std::lock_guard lock(mutex_);
  const std::size_t fourth = mappedSize_ / 4 / kHugePageSize * kHugePageSize;
  const std::size_t wanted = std::clamp(fourth, kLeast, kMost);
  if (freeSize_ < size && size < wanted) {
    if (std::byte* const memory = mapAligned(wanted)) replaceRest(memory, wanted);
  }
  if (freeSize_ < size) {
    if (std::byte* const memory = mapAligned(size)) return memory;
    replaceRest(nullptr, 0);
    if (std::byte* const memory = mapAligned(size)) return memory;
    throw std::bad_alloc();
  }
  std::byte* const taken = free_;
  free_ += size;
  freeSize_ -= size;
  return taken;
}

}  // namespace Orvane
