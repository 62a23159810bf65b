// Building the tree from the inventory, and ordering it.
#include <benchmark/benchmark.h>

#include <optional>

#include "inventory/menu_builder.h"
#include "sample_tree.h"
#include "sizes.h"

namespace {

void buildMenu(benchmark::State& state) {
  const bench::SampleTree sample(bench::sizeOf(state));
  std::optional<Orvane::MenuTree> tree;
  while (state.KeepRunning()) {
    state.PauseTiming();
    tree.emplace();
    state.ResumeTiming();
    buildMenuFromInventory(sample.manager, *tree);
  }
  bench::countItems(state);
}
BENCHMARK(buildMenu)->Apply(bench::sizes);

void freeTree(benchmark::State& state) {
  const bench::SampleTree sample(bench::sizeOf(state));
  std::optional<Orvane::MenuTree> tree;
  while (state.KeepRunning()) {
    state.PauseTiming();
    tree.emplace();
    buildMenuFromInventory(sample.manager, *tree);
    state.ResumeTiming();
    tree.reset();
  }
  bench::countItems(state);
}
BENCHMARK(freeTree)->Apply(bench::sizes);

void sortTree(benchmark::State& state) {
  const bench::SampleTree sample(bench::sizeOf(state));
  std::optional<Orvane::MenuTree> tree;
  while (state.KeepRunning()) {
    state.PauseTiming();
    tree.emplace();
    buildMenuFromInventory(sample.manager, *tree);
    state.ResumeTiming();
    Orvane::MenuTree::sortTree(tree->getRoot());
  }
  bench::countItems(state);
}
BENCHMARK(sortTree)->Apply(bench::sizes);

}  // namespace
