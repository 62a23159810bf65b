// Ordering the tracks by the names of artists and the like.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <deque>
#include <string>

#include "inventory/category_index.h"
#include "random.h"
#include "sizes.h"
#include "word_names.h"

namespace {

constexpr std::uint32_t kTracksPerId = 59;

// What tracks bring to the index.
struct Entries {
  std::deque<std::string> names;
  std::deque<Orvane::NamedId> entries;

  void add(std::uint32_t id, const std::string& name) {
    entries.emplace_back(id, names.emplace_back(name));
  }
};

// Every id keeps its name; the entries come in no order.
void namedOnce(std::uint32_t count, Entries& entries) {
  bench::Random random(1);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t id = 1 + random.below(1 + count / kTracksPerId);
    entries.add(id, bench::distinctName(id));
  }
}

// Every entry gives its id another name.
void renamedAlways(std::uint32_t count, Entries& entries) {
  bench::Random random(1);
  for (std::uint32_t i = 0; i < count; ++i) {
    entries.add(1 + random.below(1 + count / kTracksPerId), bench::distinctName(i));
  }
}

void insert(const Entries& entries, Orvane::CategoryIndex& index) {
  std::uint32_t track = 0;
  for (const Orvane::NamedId& entry : entries.entries) index.insert(entry, track++);
}

template <void (*makeEntries)(std::uint32_t, Entries&)>
void insertAndOrder(benchmark::State& state) {
  Entries entries;
  makeEntries(bench::sizeOf(state), entries);
  while (state.KeepRunning()) {
    Orvane::CategoryIndex index;
    insert(entries, index);
    benchmark::DoNotOptimize(index.tracksInOrder());
  }
  bench::countItems(state);
}
BENCHMARK(insertAndOrder<namedOnce>)->Apply(bench::sizes);
BENCHMARK(insertAndOrder<renamedAlways>)->Apply(bench::sizes);

void orderOnly(benchmark::State& state) {
  Entries entries;
  namedOnce(bench::sizeOf(state), entries);
  Orvane::CategoryIndex index;
  insert(entries, index);
  while (state.KeepRunning()) benchmark::DoNotOptimize(index.tracksInOrder());
  bench::countItems(state);
}
BENCHMARK(orderOnly)->Apply(bench::sizes);

}  // namespace
