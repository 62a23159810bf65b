#include "tree/huge_pages.h"

#include <malloc.h>
#include <sys/mman.h>

#include <array>
#include <new>

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

// Moves a spare piece's pages to where others would have to be made. False when there is no memory
// at that place any more.
bool movePages(SpareMemory::Piece piece, std::byte* place) noexcept {
  if (::mremap(piece.memory, piece.size, piece.size, MREMAP_MAYMOVE | MREMAP_FIXED, place) !=
      MAP_FAILED) {
    return true;
  }
  unmapMemory(piece.memory, piece.size);
  return mapMemory(place, piece.size) != nullptr;  // the attempt may have taken away what was there
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
    if (!movePages(spare, memory + filled)) {
      unmapMemory(memory, wanted);
      throw std::bad_alloc();
    }
    filled += spare.size;
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
