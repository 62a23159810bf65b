#include "tree/huge_pages.h"

#include <malloc.h>
#include <sys/mman.h>

#include <cstdint>

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

// Maps memory, at `place` unless that is nullptr; nullptr when there is none.
std::byte* map(std::byte* place, std::size_t size) noexcept {
  void* const memory = ::mmap(place, size, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | (place ? MAP_FIXED : 0), -1, 0);
  return memory == MAP_FAILED ? nullptr : static_cast<std::byte*>(memory);
}

void unmap(std::byte* memory, std::size_t size) noexcept {
  if (size > 0) ::munmap(memory, size);
}

// Memory at a multiple of the size of a large page: only there it can have large pages.
std::byte* mapLarge(std::size_t size) {
  // More than is needed: what is before and after goes back.
  const std::size_t mapped = size + kHugePageSize;
  std::byte* const begin = map(nullptr, mapped);
  if (begin == nullptr) throw std::bad_alloc();
  const std::size_t before =
      (kHugePageSize - reinterpret_cast<std::uintptr_t>(begin) % kHugePageSize) % kHugePageSize;
  unmap(begin, before);
  unmap(begin + before + size, mapped - before - size);
  // Advice only: where it isn't taken, ordinary pages do.
  static_cast<void>(::madvise(begin + before, size, MADV_HUGEPAGE));
  return begin + before;
}

// Moves a spare piece's pages to where others would have to be made. False when there is no memory
// at that place any more.
bool movePages(SpareMemory::Piece piece, std::byte* place) noexcept {
  if (::mremap(piece.memory, piece.size, piece.size, MREMAP_MAYMOVE | MREMAP_FIXED, place) !=
      MAP_FAILED) {
    return true;
  }
  unmap(piece.memory, piece.size);
  return map(place, piece.size) != nullptr;  // the attempt may have taken away what was there
}

}  // namespace

void* allocateLarge(std::size_t size) {
  if (!isMapped(size)) return ::operator new(size);
  if (size > PTRDIFF_MAX - 2 * kHugePageSize) throw std::bad_alloc();

  const std::size_t wanted = roundedUp(size);
  std::byte* const memory = mapLarge(wanted);
  std::size_t filled = 0;
  for (auto spare = spareMemory().take(wanted); spare.size > 0;
       spare = spareMemory().take(wanted - filled)) {
    if (!movePages(spare, memory + filled)) {
      unmap(memory, wanted);
      throw std::bad_alloc();
    }
    filled += spare.size;
  }
  return memory;
}

void giveBackSpareMemory() noexcept {
  constexpr std::size_t kAll = static_cast<std::size_t>(-1);
  for (auto spare = spareMemory().take(kAll); spare.size > 0; spare = spareMemory().take(kAll)) {
    unmap(spare.memory, spare.size);
  }
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
  } else if (!spareMemory().keep({static_cast<std::byte*>(memory), roundedUp(size)})) {
    unmap(static_cast<std::byte*>(memory), roundedUp(size));
  }
}

}  // namespace Orvane
