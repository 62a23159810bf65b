#include "tree/arena.h"

#include <algorithm>

#include "tree/huge_pages.h"
#include "tree/pages_ahead.h"

namespace Orvane {

namespace {

constexpr std::size_t kFirstBlock = std::size_t{1} << 14;

}  // namespace

void Arena::clear() {
  for (auto* const blocks : {&blocks_, &singles_}) {
    for (const Block& block : *blocks) freeLarge(block.memory, block.size);
    blocks->clear();
  }
  free_ = nullptr;
  freeSize_ = 0;
  unusedSize_ = 0;
  blocksSize_ = 0;
}

// Blocks are aligned for anything.
std::byte* Arena::addBlock(std::vector<Block>& blocks, std::size_t size) {
  blocks.push_back({nullptr, 0});  // first, so that no block is lost if there's no room for it
  blocks.back() = {allocateLarge(size), size};
  return static_cast<std::byte*>(blocks.back().memory);
}

void* Arena::allocateFurtherOn(std::size_t size, std::size_t alignment) {
  // What would take much of a block gets one to itself, so that little is left unused.
  if (size >= std::min(nextBlockSize() / 4, kHugePageSize)) return addBlock(singles_, size);
  if (unusedSize_ == 0) startBlock();
  useNextPart();
  return allocate(size, alignment);
}

// As much again as there is, up to a size that is little; then a fourth of it. So little is left
// unused, and there are few blocks.
std::size_t Arena::nextBlockSize() const {
  constexpr std::size_t kLittle = std::size_t{1} << 23;
  const std::size_t fourth = blocksSize_ / 4 / kHugePageSize * kHugePageSize;
  return std::min(kFirstBlock + blocksSize_, std::max(kLittle, fourth));
}

void Arena::startBlock() {
  const std::size_t size = nextBlockSize();
  free_ = addBlock(blocks_, size);
  freeSize_ = 0;
  unusedSize_ = size;
  blocksSize_ += size;
}

// Large blocks come into use a large page at a time, while the next one is being made.
void Arena::useNextPart() {
  const std::size_t part = std::min(unusedSize_, kHugePageSize);
  freeSize_ += part;
  unusedSize_ -= part;
  if (unusedSize_ > 0) makePagesAhead(free_ + freeSize_, kHugePageSize);
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
