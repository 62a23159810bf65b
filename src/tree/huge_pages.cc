#include "tree/huge_pages.h"

#include <malloc.h>
#include <sys/mman.h>

#include <cstdint>
#include <exception>
#include <thread>

#include "tree/spare_memory.h"

namespace Orvane {

namespace {

// What is smaller isn't worth pages of its own.
bool isMapped(std::size_t size) {
  return size >= kHugePageSize;
}

SpareMemory& spareMemory() {
  static SpareMemory spare;
  return spare;
}

std::size_t roundedUp(std::size_t size) {
  return (size + kHugePageSize - 1) / kHugePageSize * kHugePageSize;
}

std::byte* map(std::size_t size) {
  void* const memory =
      ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  return static_cast<std::byte*>(memory);
}

void unmap(std::byte* memory, std::size_t size) noexcept {
  if (size > 0) ::munmap(memory, size);
}

}  // namespace

void* allocateLarge(std::size_t size) {
  if (!isMapped(size)) return ::operator new(size);
  if (size > PTRDIFF_MAX - 2 * kHugePageSize) throw std::bad_alloc();

  // Only a piece that begins at a multiple of the page size can have large pages: map more than is
  // needed, and give back what is before and after.
  const std::size_t wanted = roundedUp(size);
  if (std::byte* const spare = spareMemory().take(wanted)) return spare;
  const std::size_t mapped = wanted + kHugePageSize;
  std::byte* const begin = map(mapped);
  const std::size_t before =
      (kHugePageSize - reinterpret_cast<std::uintptr_t>(begin) % kHugePageSize) % kHugePageSize;
  unmap(begin, before);
  unmap(begin + before + wanted, mapped - before - wanted);
  // Advice only: where it isn't taken, ordinary pages do.
  static_cast<void>(::madvise(begin + before, wanted, MADV_HUGEPAGE));
  return begin + before;
}

void makePagesAhead(void* memory, std::size_t size) {
#ifdef MADV_POPULATE_WRITE
  constexpr std::size_t kWorthAThread = std::size_t{1} << 23;
  if (size < kWorthAThread || std::thread::hardware_concurrency() < 2) return;
  const auto makePages = [begin = static_cast<std::byte*>(memory), size] {
    for (std::size_t at = 0; at < size; at += kHugePageSize) {
      if (::madvise(begin + at, kHugePageSize, MADV_POPULATE_WRITE) != 0) return;
    }
  };
  try {
    std::thread(makePages).detach();
  } catch (const std::exception&) {
    // Then they are made when they are touched.
  }
#endif
}

void keepFreedMemory() noexcept {
  constexpr int kMebibyte = 1 << 20;
  // Refusals would cost time only.
  static_cast<void>(::mallopt(M_ARENA_MAX, 1));
  static_cast<void>(::mallopt(M_MMAP_THRESHOLD, 8 * kMebibyte));
  static_cast<void>(::mallopt(M_TRIM_THRESHOLD, 64 * kMebibyte));
  static_cast<void>(::mallopt(M_TOP_PAD, kMebibyte));
}

void freeLarge(void* memory, std::size_t size) noexcept {
  if (!isMapped(size)) {
    ::operator delete(memory);
  } else if (!spareMemory().keep(static_cast<std::byte*>(memory), roundedUp(size))) {
    unmap(static_cast<std::byte*>(memory), roundedUp(size));
  }
}

}  // namespace Orvane
