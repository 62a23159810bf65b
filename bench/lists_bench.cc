// Reading the lists: lines, fields, and both files into a manager.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

#include "inventory/line_reader.h"
#include "inventory/list_files.h"
#include "inventory/name_folding.h"
#include "inventory/split_fields.h"
#include "inventory/track_manager.h"
#include "memory_file.h"
#include "sizes.h"
#include "song.h"
#include "text_file.h"
#include "word_names.h"

namespace {

void writeLibrary(std::uint32_t tracks, const bench::MemoryFile& memory) {
  bench::TextFile file(memory.path());
  for (std::uint32_t i = 0; i < tracks; ++i) addSong(file, bench::songOfLibrary(i, tracks));
  file.close();
}

void readLines(benchmark::State& state) {
  const bench::MemoryFile file;
  writeLibrary(bench::sizeOf(state), file);
  while (state.KeepRunning()) {
    Orvane::LineReader reader(file.path().c_str());
    while (!reader.atEnd()) benchmark::DoNotOptimize(reader.next());
  }
  bench::countItems(state);
}
BENCHMARK(readLines)->Apply(bench::sizes);

void splitLines(benchmark::State& state) {
  const bench::MemoryFile file;
  writeLibrary(bench::sizeOf(state), file);
  std::vector<std::string> lines;
  Orvane::LineReader reader(file.path().c_str());
  while (!reader.atEnd()) lines.emplace_back(reader.next());
  std::vector<std::string_view> fields;
  while (state.KeepRunning()) {
    for (const std::string& line : lines) {
      fields.clear();
      Orvane::splitFields(line, fields, "|");
      benchmark::DoNotOptimize(fields.data());
    }
  }
  bench::countItems(state);
}
BENCHMARK(splitLines)->Apply(bench::sizes);

void foldNames(benchmark::State& state) {
  std::vector<std::string> names;
  for (std::uint32_t i = 0; i < bench::sizeOf(state); ++i) names.push_back(bench::distinctName(i));
  while (state.KeepRunning()) {
    for (const std::string& name : names) benchmark::DoNotOptimize(Orvane::foldName(name));
  }
  bench::countItems(state);
}
BENCHMARK(foldNames)->Apply(bench::sizes);

void readTracksFile(benchmark::State& state) {
  const bench::MemoryFile tracks;
  const bench::MemoryFile noPlaylists;
  writeLibrary(bench::sizeOf(state), tracks);
  while (state.KeepRunning()) {
    Orvane::TrackManager manager;
    readInventoryFiles(manager, tracks.path().c_str(), noPlaylists.path().c_str(), true);
    benchmark::DoNotOptimize(manager);
  }
  bench::countItems(state);
}
BENCHMARK(readTracksFile)->Apply(bench::sizes);

}  // namespace
