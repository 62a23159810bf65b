#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>

namespace bench {

// The sizes at which the pieces are measured: what fits the caches, what a collector has, and one
// in between.
inline void sizes(benchmark::internal::Benchmark* piece) {
  piece->Arg(1000)->Arg(50'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

inline std::uint32_t sizeOf(const benchmark::State& state) {
  return static_cast<std::uint32_t>(state.range(0));
}

// Makes the report show nanoseconds an item besides the time of the whole.
inline void countItems(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["per_item"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace bench
