#include "tree/arena.h"

#include <algorithm>
#include <memory>

#include "tree/huge_pages.h"

namespace Orvane {

namespace {

constexpr std::size_t kLargestBlock = std::size_t{1} << 25;

}  // namespace

Arena::~Arena() {
  for (const Block& block : blocks_) freeLarge(block.memory, block.size);
}

void Arena::addBlock(std::size_t size) {
  blocks_.push_back({nullptr, 0});  // first, so that no block is lost if there's no room for it
  blocks_.back() = {allocateLarge(size), size};
}

void* Arena::allocate(std::size_t size, std::size_t alignment) {
  void* place = free_;
  if (std::align(alignment, size, place, freeSize_) == nullptr) {
    // What would take much of a block gets one to itself, so that little is left unused.
    if (size > nextSize_ / 4) {
      addBlock(size);
      return blocks_.back().memory;
    }
    addBlock(nextSize_);
    place = blocks_.back().memory;
    freeSize_ = nextSize_;
    nextSize_ = std::min(2 * nextSize_, kLargestBlock);
  }
  free_ = static_cast<std::byte*>(place) + size;
  freeSize_ -= size;
  return place;
}

std::string_view Arena::keep(std::string_view text) {
  if (text.empty()) return {};
  char* const copy = static_cast<char*>(allocate(text.size(), 1));
  std::copy(text.begin(), text.end(), copy);
  return {copy, text.size()};
}

}  // namespace Orvane
