#pragma once

#include <algorithm>
#include <cstddef>

namespace Orvane {

// Calls `use` for the target of each pointer in [begin, end), in order. Targets that are all over
// the memory are asked for early enough to be there when their turn comes. Before that, `expect...`
// are called for each target, one after the other and each in time for the next: they can ask for
// what the target leads to.
template <typename Pointer, typename Use, typename... Expect>
void forEachPrefetched(Pointer begin, Pointer end, Use use, Expect... expect) {
  constexpr std::ptrdiff_t kStep = 8;
  constexpr std::ptrdiff_t kFirst = kStep * (std::max<std::ptrdiff_t>(sizeof...(Expect), 1) + 1);
  for (Pointer at = begin; at != end; ++at) {
    std::ptrdiff_t distance = kFirst;
    if (end - at > distance) __builtin_prefetch(at[distance]);
    [[maybe_unused]] const auto call = [&](auto& step) {
      distance -= kStep;
      if (end - at > distance) step(*at[distance]);
    };
    (call(expect), ...);
    use(**at);
  }
}

}  // namespace Orvane
