#include "tree/arena.h"

#include <algorithm>

#include "tree/huge_pages.h"

namespace Orvane {

namespace {

constexpr std::size_t kLargestBlock = std::size_t{1} << 23;

// From so many blocks on, one more is no waste to speak of: it gets its pages while the one before
// is being filled.
constexpr std::size_t kBlocksBeforeNext = 18;

}  // namespace

void Arena::clear() {
  for (auto* const blocks : {&blocks_, &singles_}) {
    for (const Block& block : *blocks) freeLarge(block.memory, block.size);
    blocks->clear();
  }
  nextBlock_ = nullptr;
  free_ = nullptr;
  freeSize_ = 0;
  nextSize_ = kFirstBlock;
}

std::byte* Arena::addBlock(std::vector<Block>& blocks, std::size_t size) {
  blocks.push_back({nullptr, 0});  // first, so that no block is lost if there's no room for it
  blocks.back() = {allocateLarge(size), size};
  return static_cast<std::byte*>(blocks.back().memory);
}

// Blocks are aligned for anything.
void* Arena::allocateInNewBlock(std::size_t size) {
  // What would take much of a block gets one to itself, so that little is left unused.
  if (size >= nextSize_ / 4) return addBlock(singles_, size);
  std::byte* const memory = nextBlock_ ? nextBlock_ : addBlock(blocks_, nextSize_);
  free_ = memory + size;
  freeSize_ = nextSize_ - size;
  nextSize_ = std::min(2 * nextSize_, kLargestBlock);
  nextBlock_ = nullptr;
  if (blocks_.size() >= kBlocksBeforeNext) {
    nextBlock_ = addBlock(blocks_, nextSize_);
    makePagesAhead(nextBlock_, nextSize_);
  }
  return memory;
}

bool Arena::giveBack(void* memory) {
  const auto single = std::find_if(singles_.begin(), singles_.end(),
                                   [=](const Block& block) { return block.memory == memory; });
  if (single == singles_.end()) return false;
  freeLarge(single->memory, single->size);
  *single = singles_.back();
  singles_.pop_back();
  return true;
}

std::string_view Arena::keep(std::string_view text) {
  if (text.empty()) return {};
  char* const copy = static_cast<char*>(allocate(text.size(), 1));
  std::copy(text.begin(), text.end(), copy);
  return {copy, text.size()};
}

}  // namespace Orvane
