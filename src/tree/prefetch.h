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
  const std::ptrdiff_t count = end - begin;
  const std::ptrdiff_t step = std::min<std::ptrdiff_t>(count, sizeof...(Expect) == 0 ? 16 : 8);
  const std::ptrdiff_t last = step * static_cast<std::ptrdiff_t>(sizeof...(Expect) + 1);
  for (std::ptrdiff_t i = 0; i < count + last; ++i) {
    if (i < count) __builtin_prefetch(begin[i]);
    std::ptrdiff_t at = i;
    [[maybe_unused]] const auto call = [&](auto& ask) {
      at -= step;
      if (at >= 0 && at < count) ask(*begin[at]);
    };
    (call(expect), ...);
    if (i >= last) use(*begin[i - last]);
  }
}

}  // namespace Orvane
