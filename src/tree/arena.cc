#include "tree/arena.h"

#include <algorithm>

#include "tree/huge_pages.h"

namespace Orvane {

namespace {

constexpr std::size_t kLargestBlock = std::size_t{1} << 23;

}  // namespace

Arena::~Arena() {
  for (const Block& block : blocks_) freeLarge(block.memory, block.size);
}

void Arena::addBlock(std::size_t size) {
  blocks_.push_back({nullptr, 0});  // first, so that no block is lost if there's no room for it
  blocks_.back() = {allocateLarge(size), size};
}

// Blocks are aligned for anything.
void* Arena::allocateInNewBlock(std::size_t size) {
  // What would take much of a block gets one to itself, so that little is left unused.
  if (size > nextSize_ / 4) {
    addBlock(size);
    return blocks_.back().memory;
  }
  addBlock(nextSize_);
  makePagesAhead(blocks_.back().memory, nextSize_);
  auto* const memory = static_cast<std::byte*>(blocks_.back().memory);
  free_ = memory + size;
  freeSize_ = nextSize_ - size;
  nextSize_ = std::min(2 * nextSize_, kLargestBlock);
  return memory;
}

std::string_view Arena::keep(std::string_view text) {
  if (text.empty()) return {};
  char* const copy = static_cast<char*>(allocate(text.size(), 1));
  std::copy(text.begin(), text.end(), copy);
  return {copy, text.size()};
}

}  // namespace Orvane
