// From the tree to the file: laying it out, encoding records, putting them through the buffer.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>

#include "io/disk_buffer.h"
#include "output/one_table_layout.h"
#include "output/one_table_writer.h"
#include "output/two_table_layout.h"
#include "output/two_table_writer.h"
#include "sample_tree.h"
#include "sizes.h"

namespace {

// Takes all bytes and keeps none: what is left is the program's own work.
constexpr const char* kNowhere = "/dev/null";

void layoutTwoTables(benchmark::State& state) {
  const bench::SampleTree sample(bench::sizeOf(state));
  while (state.KeepRunning()) {
    Orvane::TreeTable treeTable;
    Orvane::DataTable dataTable;
    dataTable.appendLeaf(sample.tree.root());
    Orvane::DataRecordIndex idMap(sample.tree);
    Orvane::layoutChildren(sample.tree.getRoot(), treeTable, dataTable, idMap);
    benchmark::DoNotOptimize(treeTable.size());
    benchmark::DoNotOptimize(dataTable.size());
  }
  bench::countItems(state);
}
BENCHMARK(layoutTwoTables)->Apply(bench::sizes);

void layoutOneTable(benchmark::State& state) {
  const bench::SampleTree sample(bench::sizeOf(state));
  while (state.KeepRunning()) {
    Orvane::NodeTable table;
    Orvane::layoutNodeChildren(sample.tree.getRoot(), table);
    benchmark::DoNotOptimize(table.size());
  }
  bench::countItems(state);
}
BENCHMARK(layoutOneTable)->Apply(bench::sizes);

void putRecords(benchmark::State& state) {
  Orvane::DiskBuffer buffer(kNowhere);
  const std::array<char, Orvane::kDataRecordSize> record{};
  while (state.KeepRunning()) {
    buffer.openForWrite();
    for (std::uint32_t i = 0; i < bench::sizeOf(state); ++i) {
      buffer.write(record.data(), static_cast<int>(record.size()));
    }
    buffer.close();
  }
  bench::countItems(state);
}
BENCHMARK(putRecords)->Apply(bench::sizes);

template <bool (*write)(const Orvane::MenuTree&, Orvane::Buffer&)>
void writeTree(benchmark::State& state) {
  const bench::SampleTree sample(bench::sizeOf(state));
  Orvane::DiskBuffer buffer(kNowhere);
  while (state.KeepRunning()) write(sample.tree, buffer);
  bench::countItems(state);
}
BENCHMARK(writeTree<Orvane::writeTwoTable>)->Apply(bench::sizes);
BENCHMARK(writeTree<Orvane::writeOneTable>)->Apply(bench::sizes);

}  // namespace
