#include "tree/huge_pages.h"

#include <malloc.h>
#include <sys/mman.h>

#include <array>
#include <new>
#include <utility>

#include "tree/mapping_pool.h"
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

MappingPool& mappingPool() {
  // Never destroyed: who takes from it may be later.
  alignas(MappingPool) static std::array<std::byte, sizeof(MappingPool)> place;
  static MappingPool& pool = *new (place.data()) MappingPool();
  return pool;
}

std::size_t roundedUp(std::size_t size) {
  return (size + kHugePageSize - 1) / kHugePageSize * kHugePageSize;
}

// Moves a spare piece's pages to where others would have to be made.
bool movePages(SpareMemory::Piece piece, std::byte* place) noexcept {
  return ::mremap(piece.memory, piece.size, piece.size, MREMAP_MAYMOVE | MREMAP_FIXED, place) !=
         MAP_FAILED;
}

}  // namespace

void* allocateLarge(std::size_t size) {
  if (!isMapped(size)) return ::operator new(size);
  if (size > PTRDIFF_MAX - 2 * kHugePageSize) throw std::bad_alloc();

  const std::size_t wanted = roundedUp(size);
  std::byte* const memory = mappingPool().take(wanted);
  std::size_t filled = 0;
  for (auto spare = spareMemory().take(wanted); spare.size > 0;
       spare = spareMemory().take(wanted - filled)) {
    const std::size_t before = std::exchange(filled, filled + spare.size);
    if (!movePages(spare, memory + before)) {
      // As by a system that doesn't move several mappings at once. It may have unmapped the place
      // before it refused, and another thread may have mapped it since: it is left alone.
      unmapMemory(spare.memory, spare.size);
      unmapMemory(memory, before);
      unmapMemory(memory + filled, wanted - filled);
      return mappingPool().take(wanted);
    }
  }
  return memory;
}

void giveBackSpareMemory() noexcept {
  constexpr std::size_t kAll = static_cast<std::size_t>(-1);
  for (auto spare = spareMemory().take(kAll); spare.size > 0; spare = spareMemory().take(kAll)) {
    unmapMemory(spare.memory, spare.size);
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
    unmapMemory(static_cast<std::byte*>(memory), roundedUp(size));
  }
}

}  // namespace Orvane
