#include "allocation_probe.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace Orvane::test {

namespace {

constexpr std::ptrdiff_t kUnlimited = -1;

std::atomic<std::ptrdiff_t> live{0};
std::atomic<std::ptrdiff_t> remaining{kUnlimited};

void* allocate(std::size_t size) {
  if (remaining == 0) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  if (remaining > 0) --remaining;
  ++live;
  return memory;
}

void release(void* memory) {
  if (memory == nullptr) return;
  --live;
  std::free(memory);
}

}  // namespace

std::ptrdiff_t liveAllocations() {
  return live;
}

LimitedAllocations::LimitedAllocations(std::ptrdiff_t allowed) {
  remaining = allowed;
}

LimitedAllocations::~LimitedAllocations() {
  remaining = kUnlimited;
}

}  // namespace Orvane::test

void* operator new(std::size_t size) {
  return Orvane::test::allocate(size);
}

void* operator new[](std::size_t size) {
  return Orvane::test::allocate(size);
}

void operator delete(void* memory) noexcept {
  Orvane::test::release(memory);
}

void operator delete[](void* memory) noexcept {
  Orvane::test::release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  Orvane::test::release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  Orvane::test::release(memory);
}
