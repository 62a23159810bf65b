#pragma once

#include <cstddef>

namespace Orvane {

// Calls `use` for the target of each pointer in [begin, end), in order. Targets that are all over
// the memory are asked for early enough to be there when their turn comes.
template <typename Pointer, typename Use>
void forEachPrefetched(Pointer begin, Pointer end, Use use) {
  constexpr std::ptrdiff_t kDistance = 16;
  for (Pointer at = begin; at != end; ++at) {
    if (end - at > kDistance) __builtin_prefetch(at[kDistance]);
    use(**at);
  }
}

}  // namespace Orvane
