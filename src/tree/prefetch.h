#pragma once

#include <algorithm>
#include <cstddef>

namespace Orvane {

// Asks for the memory at `address`, which need not be anyone's.
inline void prefetch(const void* address) {
  __builtin_prefetch(address);
  // g++ takes a function that only prefetches for one without effect, and drops calls of it. This
  // is no instruction, but an effect.
  asm volatile("");
}

// Calls `use` with each index below `count`, in order. Before that, `expect...` are called with the
// index, one after the other and each in time for the next: they ask for what the next one or `use`
// looks at, which may be all over the memory.
template <typename Use, typename... Expect>
void forEachPrefetched(std::size_t count, Use use, Expect... expect) {
  static_assert(sizeof...(Expect) > 0);
  // What is on the way while 16 are used is there in time; to start with fewer costs short
  // sequences less.
  const std::size_t step = std::min<std::size_t>(count, count < 100 ? 8 : 16);
  const std::size_t last = step * sizeof...(Expect);
  for (std::size_t i = 0; i < count + last; ++i) {
    std::size_t at = i;  // wraps where it would be below 0, and so is not below `count`
    const auto call = [&](auto& ask) {
      if (at < count) ask(at);
      at -= step;
    };
    (call(expect), ...);
    if (i >= last) use(i - last);
  }
}

}  // namespace Orvane
