#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Orvane {

// Memory that is handed out piece by piece and given back all at once, when the arena is destroyed.
// Nothing in it ever moves; no destructor of what is put there is run.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena();

  // `size` bytes. `alignment` is a power of two, at most that of std::max_align_t.
  void* allocate(std::size_t size, std::size_t alignment) {
    const std::size_t skipped = -reinterpret_cast<std::uintptr_t>(free_) & (alignment - 1);
    if (freeSize_ < skipped || freeSize_ - skipped < size) return allocateInNewBlock(size);
    std::byte* const place = free_ + skipped;
    free_ = place + size;
    freeSize_ -= skipped + size;
    return place;
  }

  // A view of a copy of `text`.
  std::string_view keep(std::string_view text);

 private:
  struct Block {
    void* memory;
    std::size_t size;
  };

  void* allocateInNewBlock(std::size_t size);
  void addBlock(std::size_t size);

  std::vector<Block> blocks_;
  std::byte* free_ = nullptr;  // the unused part of the last block of the regular size
  std::size_t freeSize_ = 0;
  std::size_t nextSize_ = std::size_t{1} << 14;
};

}  // namespace Orvane
