#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Orvane {

// Memory that is handed out piece by piece and given back all at once, when the arena is cleared or
// destroyed; only large pieces can go before. Nothing in it ever moves; no destructor of what is
// put there is run.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena() { clear(); }

  // `size` bytes. `alignment` is a power of two, at most that of std::max_align_t.
  void* allocate(std::size_t size, std::size_t alignment) {
    const std::size_t skipped = -reinterpret_cast<std::uintptr_t>(free_) & (alignment - 1);
    // The part in use ends at a multiple of every alignment: there is always enough left to skip.
    if (freeSize_ - skipped < size) return allocateFurtherOn(size, alignment);
    std::byte* const place = free_ + skipped;
    free_ = place + size;
    freeSize_ -= skipped + size;
    return place;
  }

  // Frees a piece before the others. False, with nothing done, when it is too small for that.
  bool giveBack(void* memory);

  // Frees all pieces.
  void clear();

  // A view of a copy of `text`.
  std::string_view keep(std::string_view text);

 private:
  struct Block {
    void* memory;
    std::size_t size;
  };

  void* allocateFurtherOn(std::size_t size, std::size_t alignment);
  std::size_t nextBlockSize() const;
  void startBlock();
  void useNextPart();
  static std::byte* addBlock(std::vector<Block>& blocks, std::size_t size);

  std::vector<Block> blocks_;   // of many pieces
  std::vector<Block> singles_;  // of one each
  std::byte* free_ = nullptr;   // what is free of that part of the newest block that is in use
  std::size_t freeSize_ = 0;    // of that
  std::size_t unusedSize_ = 0;  // of the rest of that block, which comes into use part by part
  std::size_t blocksSize_ = 0;  // of all blocks of many pieces
};

}  // namespace Orvane
