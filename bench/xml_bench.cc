// Reading an XML menu tree.
#include <benchmark/benchmark.h>

#include <optional>

#include "inventory/xml_reader.h"
#include "memory_file.h"
#include "random.h"
#include "sizes.h"
#include "text_file.h"
#include "word_names.h"

namespace {

constexpr std::uint32_t kMediaPerMenu = 10;

void writeMenus(std::uint32_t elements, const bench::MemoryFile& memory) {
  bench::TextFile file(memory.path());
  file.add("<inventory>\n");
  bench::Random random(1);
  for (std::uint32_t i = 0; i < elements; ++i) {
    const bool startsMenu = i % (1 + kMediaPerMenu) == 0;
    if (startsMenu && i > 0) file.add("</menu>\n");
    if (startsMenu) {
      file.add("<menu name=\"", bench::distinctName(i), "\" rectype=\"3\">\n");
    } else {
      file.add("  <media name=\"", randomName(random, 3), "\" rectype=\"0\" mediaid=\"", i,
               "\" rating=\"2\"/>\n");
    }
  }
  file.add("</menu>\n</inventory>\n");
  file.close();
}

void readXml(benchmark::State& state) {
  const bench::MemoryFile file;
  writeMenus(bench::sizeOf(state), file);
  std::optional<Orvane::MenuTree> tree;
  while (state.KeepRunning()) {
    state.PauseTiming();
    tree.emplace();
    state.ResumeTiming();
    Orvane::buildTreeFromXml(file.path().c_str(), *tree);
  }
  bench::countItems(state);
  if (tree->getRoot()->childCount() == 0) state.SkipWithError("nothing was read");
}
BENCHMARK(readXml)->Apply(bench::sizes);

}  // namespace
