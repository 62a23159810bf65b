// Inventories so large that threads share the work.
#include <gtest/gtest.h>
#include <sched.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "cli/options.h"
#include "cli/run.h"
#include "list_reading.h"
#include "seeded_random.h"
#include "test_support.h"
#include "tree/parallel.h"

namespace Orvane::test {
namespace {

// Names come up again, also as other ids' and other kinds' names, and some tracks come twice.
std::string randomTracks(std::uint32_t count) {
  std::mt19937 random = seededRandom(21);
  const auto below = [&](std::uint32_t limit) {
    return static_cast<std::uint32_t>(random() % limit);
  };
  const auto named = [](std::uint32_t id, std::uint32_t names) {
    return std::to_string(id) + "|name " + std::to_string(id % names) + "|";
  };
  std::string lines;
  for (std::uint32_t i = 0; i < count; ++i) {
    lines += std::to_string(below(count * 2)) + "|name " + std::to_string(below(count / 3)) + "|";
    lines += named(below(3000), 2000) + named(below(9000), 5000) + named(below(20), 15);
    lines += std::to_string(below(5)) + "\n";
  }
  return lines;
}

// A user's machine may have one processor only.
class OneProcessor {
 public:
  OneProcessor() {
    EXPECT_EQ(::sched_getaffinity(0, sizeof(before_), &before_), 0);
    cpu_set_t one;
    CPU_ZERO(&one);
    std::size_t first = 0;
    while (!CPU_ISSET(first, &before_)) ++first;
    CPU_SET(first, &one);
    EXPECT_EQ(::sched_setaffinity(0, sizeof(one), &one), 0);
  }
  OneProcessor(const OneProcessor&) = delete;
  OneProcessor& operator=(const OneProcessor&) = delete;
  ~OneProcessor() { ::sched_setaffinity(0, sizeof(before_), &before_); }

 private:
  cpu_set_t before_;
};

TEST(LargeInventory, IsTheSameOnOneProcessorAndOnSeveral) {
  const TempDir dir;
  writeFile(dir / "tracks.txt", randomTracks(260'000));
  writeFile(dir / "playlists.txt", "list\n1\n7\n8\n9\n7\n-1\n");
  for (const int tables : {1, 2}) {
    const std::string tracks = dir / "tracks.txt";
    const std::string playlists = dir / "playlists.txt";
    const std::string several = dir / "several";
    const std::string one = dir / "one";
    Options options;
    options.tracksFile = tracks.c_str();
    options.playlistsFile = playlists.c_str();
    options.xmlMode = false;
    options.tables = tables;
    options.outputFile = several.c_str();
    run(options);
    {
      const OneProcessor processor;
      ASSERT_EQ(usableProcessors(), 1U);
      options.outputFile = one.c_str();
      run(options);
    }
    const std::string bytes = readFile(several);
    EXPECT_GT(bytes.size(), 20'000'000U);
    EXPECT_TRUE(bytes == readFile(one)) << tables;
  }
}

// What can't be used is told in its order, and what follows it is read.
TEST(LargeInventory, TellsOfLinesThatAnotherThreadMeets) {
  std::string tracks;
  std::string expected;
  for (int line = 1; line <= 30'000; ++line) {
    if (line % 7'500 == 0) {
      tracks += "1|too|few\n";
      expected +=
          "tracks.txt:" + std::to_string(line) + ": expected 8 fields, found 3: line skipped\n";
    } else {
      tracks += std::to_string(line) + "|T|2|A|3|B|4|C\n";
    }
  }
  const ListReading reading = readTracks(tracks);
  EXPECT_EQ(reading.complaints, expected);
  EXPECT_EQ(reading.tracks().size(), 30'000U - 4);
  EXPECT_EQ(reading.tracks().back(), "29999 'T' 2 'A' 3 'B' 4 'C' 0");
}

}  // namespace
}  // namespace Orvane::test
