// Memory in large pages. The first touch of a 4 KiB page costs more than all that this program then
// does with it; in pages of 2 MiB that cost all but goes away.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace Orvane {

inline constexpr std::size_t kHugePageSize = std::size_t{1} << 21;

// `size` bytes, with any contents; when `size` is worth it in large pages, which are kept for the
// next who asks when they are freed. Throws std::bad_alloc. To be given back with the same size.
void* allocateLarge(std::size_t size);
void freeLarge(void* memory, std::size_t size) noexcept;

// Gives the system back what is kept for the next who asks, but for addresses without pages. Worth
// it before much is written: the system needs memory for the file.
void giveBackSpareMemory() noexcept;

// Has malloc keep, for the whole process, what is freed for what is asked for next: sequences that
// grow give much back that would otherwise be touched for the first time again and again. Threads
// share it.
void keepFreedMemory() noexcept;

// For containers that may grow large.
template <typename T>
struct LargeAllocator {
  using value_type = T;

  LargeAllocator() = default;
  template <typename U>
  explicit LargeAllocator(const LargeAllocator<U>& /*other*/) {}

  T* allocate(std::size_t count) {
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(allocateLarge(count * sizeof(T)));
  }
  void deallocate(T* memory, std::size_t count) noexcept { freeLarge(memory, count * sizeof(T)); }

  friend bool operator==(const LargeAllocator& /*a*/, const LargeAllocator& /*b*/) { return true; }
};

template <typename T>
using LargeVector = std::vector<T, LargeAllocator<T>>;

// Frees the memory of a vector, which is empty then: to assign {} would keep it.
template <typename T>
void release(LargeVector<T>& vector) {
  LargeVector<T>().swap(vector);
}

}  // namespace Orvane
