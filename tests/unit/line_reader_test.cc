#include "inventory/line_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "inventory/line_read_error.h"
#include "seeded_random.h"
#include "test_support.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

// All lines up to and with the one at the end.
std::vector<std::string> linesOf(const std::string& path) {
  LineReader reader(path.c_str());
  std::vector<std::string> lines;
  while (!reader.atEnd()) {
    lines.emplace_back(reader.next());
    EXPECT_EQ(reader.lineNumber(), lines.size());
  }
  return lines;
}

// The same, read several at a time.
std::vector<std::string> linesInGroups(const std::string& path, std::size_t atMost) {
  LineReader reader(path.c_str());
  std::vector<std::string> lines;
  std::vector<std::string_view> group(atMost);
  while (!reader.atEnd()) {
    const std::size_t count = reader.nextLines(group);
    EXPECT_GE(count, 1U);
    lines.insert(lines.end(), group.begin(), group.begin() + static_cast<std::ptrdiff_t>(count));
    EXPECT_EQ(reader.lineNumber(), lines.size());
  }
  return lines;
}

std::vector<std::string> linesIn(std::string_view content) {
  const TempDir dir;
  writeFile(dir / "file", content);
  return linesOf(dir / "file");
}

// The same, by hand: what follows the last line feed is a line, too.
std::vector<std::string> plainLines(const std::string& content) {
  std::vector<std::string> lines(1);
  for (const char c : content) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

TEST(LineReader, EmptyFileHasOneEmptyLine) {
  EXPECT_THAT(linesIn(""), ElementsAre(""));
}

TEST(LineReader, EndsWithWhatFollowsTheLastLineFeed) {
  EXPECT_THAT(linesIn("one"), ElementsAre("one"));
  EXPECT_THAT(linesIn("one\n"), ElementsAre("one", ""));
  EXPECT_THAT(linesIn("one\ntwo"), ElementsAre("one", "two"));
  EXPECT_THAT(linesIn("\n\n"), ElementsAre("", "", ""));
}

TEST(LineReader, DropsNothingButLineFeeds) {
  EXPECT_THAT(linesIn(std::string_view(" a\t\r\n\0b\0\n\xFF\v", 11)),
              ElementsAre(" a\t\r", std::string("\0b\0", 3), "\xFF\v"));
}

TEST(LineReader, GivesEmptyLinesAfterTheEnd) {
  const TempDir dir;
  writeFile(dir / "file", "one");
  LineReader reader((dir / "file").c_str());
  EXPECT_EQ(reader.next(), "one");
  EXPECT_TRUE(reader.atEnd());
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(reader.next(), "");
    EXPECT_TRUE(reader.atEnd());
    EXPECT_EQ(reader.lineNumber(), 1U);
  }
}

TEST(LineReader, IsNotAtTheEndBeforeIt) {
  const TempDir dir;
  writeFile(dir / "file", "one\n");
  LineReader reader((dir / "file").c_str());
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(reader.next(), "one");
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(reader.next(), "");
  EXPECT_TRUE(reader.atEnd());
}

TEST(LineReader, TakesLinesLongerThanItsBlock) {
  const std::string longLine(3'000'000, 'x');
  EXPECT_EQ(linesIn("a\n" + longLine + "y\nb"),
            (std::vector<std::string>{"a", longLine + "y", "b"}));
  EXPECT_EQ(linesIn(longLine), std::vector<std::string>{longLine});
}

TEST(LineReader, TakesLinesAcrossTheEdgesOfItsBlock) {
  for (const std::size_t block : {std::size_t{1} << 17, std::size_t{1} << 18}) {
    for (std::size_t length = block - 3; length <= block + 3; ++length) {
      const std::string content = std::string(length, 'x') + "\ny\n" + std::string(length, 'z');
      ASSERT_EQ(linesIn(content), plainLines(content)) << length;
    }
  }
}

TEST(LineReader, ReadsRandomFiles) {
  std::mt19937 random = seededRandom(8);
  for (int i = 0; i < 40; ++i) {
    std::string content;
    while (content.size() < 600000) {
      content.append(random() % (random() % 30 == 0 ? 100000 : 60), static_cast<char>(random()));
      content += '\n';
    }
    content.resize(random() % content.size());
    const TempDir dir;
    writeFile(dir / "file", content);
    ASSERT_EQ(linesOf(dir / "file"), plainLines(content));
    ASSERT_EQ(linesInGroups(dir / "file", 1 + random() % 20), plainLines(content));
  }
}

TEST(LineReader, GivesOnlyLinesThatAreAtHandInAGroup) {
  const TempDir dir;
  writeFile(dir / "file", "a\nb\n\nc");
  LineReader reader((dir / "file").c_str());
  std::vector<std::string_view> group(8);
  ASSERT_EQ(reader.nextLines(group), 3U);
  EXPECT_EQ(group[0], "a");
  EXPECT_EQ(group[2], "");
  EXPECT_FALSE(reader.atEnd());
  ASSERT_EQ(reader.nextLines(group), 1U);
  EXPECT_EQ(group[0], "c");
  EXPECT_TRUE(reader.atEnd());
}

// The file system has to tell at once what a file takes.
TEST(LineReader, GuessesTheLinesThatAreLeft) {
  const TempDir dir;
  std::string content;
  for (int i = 0; i < 5000; ++i) content += std::string(99, 'x') + "\n";
  writeFile(dir / "file", content);
  LineReader reader((dir / "file").c_str());
  EXPECT_EQ(reader.expectedLines(), 0U) << "nothing is known of a file that wasn't read yet";
  for (int i = 0; i < 100; ++i) reader.next();
  EXPECT_EQ(reader.expectedLines(), 4900U);
  while (!reader.atEnd()) reader.next();
  EXPECT_EQ(reader.expectedLines(), 0U);

  writeFile(dir / "file", "\n\n" + std::string(100'000, 'x'));
  LineReader shortLines((dir / "file").c_str());
  shortLines.next();
  EXPECT_EQ(shortLines.expectedLines(), 100'001U / 16) << "a track's line is longer";
}

TEST(LineReader, ExpectsNoLinesInAHole) {
  const TempDir dir;
  writeFile(dir / "file", std::string(10'000, '\n'));
  ASSERT_EQ(::truncate((dir / "file").c_str(), off_t{1} << 27), 0);
  LineReader reader((dir / "file").c_str());
  reader.next();
  EXPECT_LT(reader.expectedLines(), 10'000U);
}

// A pipe gives few bytes at a time.
TEST(LineReader, ReadsAPipeToItsEnd) {
  const TempDir dir;
  const std::string path = dir / "pipe";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] {
    std::ofstream pipe(path);
    for (int i = 0; i < 100; ++i) pipe << "line " << i << "\nrest" << std::flush;
  });
  const std::vector<std::string> lines = linesOf(path);
  writer.join();
  ASSERT_EQ(lines.size(), 101U);
  EXPECT_EQ(lines[0], "line 0");
  EXPECT_EQ(lines[99], "restline 99");
  EXPECT_EQ(lines[100], "rest");
}

TEST(LineReader, GuessesNothingOfAPipe) {
  const TempDir dir;
  const std::string path = dir / "pipe";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(path) << "one\ntwo\n"; });
  LineReader reader(path.c_str());
  EXPECT_EQ(reader.next(), "one");
  EXPECT_EQ(reader.expectedLines(), 0U);
  writer.join();
}

TEST(LineReader, DoesNotOpenWhatIsNoFile) {
  const TempDir dir;
  EXPECT_FALSE(LineReader((dir / "missing").c_str()).isOpen());
  EXPECT_FALSE(LineReader((dir / "").c_str()).isOpen());
  EXPECT_FALSE(LineReader("").isOpen());
  writeFile(dir / "file", "");
  EXPECT_TRUE(LineReader((dir / "file").c_str()).isOpen());
  EXPECT_FALSE(LineReader((dir / "file/below").c_str()).isOpen());
}

TEST(LineReader, LeavesTheReasonWhyAFileIsNotOpen) {
  const TempDir dir;
  const std::string path = dir / "missing";
  {
    const LineReader reader(path.c_str());
    EXPECT_EQ(errno, ENOENT);
    errno = 0;
  }
  EXPECT_EQ(errno, 0) << "there was nothing to close";
}

TEST(LineReader, LeavesNoFileOpen) {
  const TempDir dir;
  writeFile(dir / "file", "line\n");
  const auto openFiles = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = openFiles();
  {
    const LineReader reader((dir / "file").c_str());
    EXPECT_EQ(openFiles(), before + 1);
    EXPECT_FALSE(LineReader((dir / "").c_str()).isOpen());
    EXPECT_EQ(openFiles(), before + 1);
  }
  EXPECT_EQ(openFiles(), before);
}

// The process's own memory can be opened, but there is nothing at address 0 to read.
TEST(LineReader, ThrowsWhenItCannotReadOn) {
  LineReader reader("/proc/self/mem");
  ASSERT_TRUE(reader.isOpen());
  try {
    reader.next();
    FAIL() << "nothing thrown";
  } catch (const LineReadError& error) {
    EXPECT_EQ(error.explanation(), "/proc/self/mem:1: cannot read on: Input/output error");
    EXPECT_EQ(error.getMessage(), OVReadError::kShortRead);
  }
}

}  // namespace
}  // namespace Orvane::test
