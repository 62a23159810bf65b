// Ordering the tracks by the names of artists and the like.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "inventory/category_index.h"
#include "random.h"
#include "sizes.h"
#include "word_names.h"

namespace {

constexpr std::uint32_t kTracksPerId = 59;

// What a track brings to the index.
struct Entry {
  std::uint32_t id;
  std::string name;
};

// Every id keeps its name; the entries come in no order.
std::vector<Entry> namedOnce(std::uint32_t count) {
  std::vector<Entry> entries;
  bench::Random random(1);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t id = 1 + random.below(1 + count / kTracksPerId);
    entries.push_back({id, bench::distinctName(id)});
  }
  return entries;
}

// Every entry gives its id another name.
std::vector<Entry> renamedAlways(std::uint32_t count) {
  std::vector<Entry> entries = namedOnce(count);
  for (std::uint32_t i = 0; i < count; ++i) entries[i].name = bench::distinctName(i);
  return entries;
}

template <std::vector<Entry> (*makeEntries)(std::uint32_t)>
void insertAndOrder(benchmark::State& state) {
  const std::vector<Entry> entries = makeEntries(bench::sizeOf(state));
  while (state.KeepRunning()) {
    Orvane::CategoryIndex index(Orvane::CategoryIndex::Order::kByName);
    std::uint32_t track = 0;
    for (const Entry& entry : entries) index.insert(entry.id, entry.name, track++);
    benchmark::DoNotOptimize(index.tracksInOrder());
  }
  bench::countItems(state);
}
BENCHMARK(insertAndOrder<namedOnce>)->Apply(bench::sizes);
BENCHMARK(insertAndOrder<renamedAlways>)->Apply(bench::sizes);

void orderOnly(benchmark::State& state) {
  const std::vector<Entry> entries = namedOnce(bench::sizeOf(state));
  Orvane::CategoryIndex index(Orvane::CategoryIndex::Order::kByName);
  std::uint32_t track = 0;
  for (const Entry& entry : entries) index.insert(entry.id, entry.name, track++);
  while (state.KeepRunning()) benchmark::DoNotOptimize(index.tracksInOrder());
  bench::countItems(state);
}
BENCHMARK(orderOnly)->Apply(bench::sizes);

}  // namespace
