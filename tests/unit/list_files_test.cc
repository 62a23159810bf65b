#include "inventory/list_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <iostream>
#include <random>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "inventory/split_fields.h"
#include "list_reading.h"
#include "seeded_random.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> split(std::string_view line, std::string_view separators = "|") {
  std::vector<std::string_view> views;
  splitFields(line, views, separators);
  return {views.begin(), views.end()};
}

TEST(SplitFields, GivesTheRunsBetweenSeparators) {
  EXPECT_THAT(split("a|b|c"), ElementsAre("a", "b", "c"));
  EXPECT_THAT(split("a"), ElementsAre("a"));
  EXPECT_THAT(split(" a | b "), ElementsAre(" a ", " b "));
}

TEST(SplitFields, NeverGivesAnEmptyField) {
  EXPECT_THAT(split(""), IsEmpty());
  EXPECT_THAT(split("|"), IsEmpty());
  EXPECT_THAT(split("|||"), IsEmpty());
  EXPECT_THAT(split("||a||b||"), ElementsAre("a", "b"));
}

TEST(SplitFields, TakesEachOfSeveralSeparators) {
  EXPECT_THAT(split("a;|b|;c", "|;"), ElementsAre("a", "b", "c"));
  EXPECT_THAT(split("a|b", ""), ElementsAre("a|b"));
  EXPECT_THAT(split(std::string_view("a\0|b", 4)), ElementsAre(std::string("a\0", 2), "b"));
}

TEST(SplitFields, AppendsUpToTheLimit) {
  std::vector<std::string_view> fields{"before"};
  splitFields("a|b|c", fields, "|", 2);
  EXPECT_THAT(fields, ElementsAre("before", "a", "b"));
  splitFields("d", fields, "|", 0);
  EXPECT_THAT(fields, ElementsAre("before", "a", "b"));
}

// Whatever is where in a machine word, every byte value included.
TEST(SplitFields, OneSeparatorSplitsAsSeveralDo) {
  std::mt19937 random = seededRandom(31);
  for (int i = 0; i < 3000; ++i) {
    std::string line(random() % 40, '\0');
    for (char& c : line) c = static_cast<char>(random() % 2 == 0 ? '{' + random() % 4 : random());
    for (const std::size_t limit : {0U, 1U, 3U, 100U}) {
      std::vector<std::string_view> fields;
      splitFields(line, fields, "|", limit);
      std::vector<std::string_view> expected;
      splitFields(line, expected, "||", limit);
      ASSERT_EQ(fields, expected) << ::testing::PrintToString(line);
    }
  }
}

TEST(TracksFile, GivesEachFieldItsPlace) {
  const ListReading reading = readTracks("101|First Song|7|Some Artist|30|Some Album|4|Pop|2\n");
  EXPECT_THAT(reading.tracks(),
              ElementsAre("101 'First Song' 7 'Some Artist' 30 'Some Album' 4 'Pop' 2"));
  EXPECT_EQ(reading.output, "");
  EXPECT_EQ(reading.complaints, "");
}

TEST(TracksFile, EightFieldsMeanNoRating) {
  EXPECT_THAT(readTracks("1|T|2|A|3|B|4|C\n").tracks(), ElementsAre("1 'T' 2 'A' 3 'B' 4 'C' 0"));
}

TEST(TracksFile, FieldsAfterTheNinthAreIgnored) {
  EXPECT_THAT(readTracks("1|T|2|A|3|B|4|C|5|6|7|8\n").tracks(),
              ElementsAre("1 'T' 2 'A' 3 'B' 4 'C' 5"));
}

TEST(TracksFile, SevenFieldsAreSkippedWithAMessage) {
  const ListReading reading = readTracks("heading\n\n1|T|2|A|3|B|4\n2|T|2|A|3|B|4|C\n|\n");
  EXPECT_THAT(reading.tracks(), ElementsAre("2 'T' 2 'A' 3 'B' 4 'C' 0"));
  EXPECT_EQ(reading.output, "");
  EXPECT_EQ(reading.complaints,
            "tracks.txt:3: expected 8 fields, found 7: line skipped\n"
            "tracks.txt:5: expected 8 fields, found 0: line skipped\n");
}

TEST(TracksFile, LineWithoutASeparatorIsSkippedSilently) {
  const ListReading reading = readTracks("# a comment\n\n \nmedia id, title\n\r\n");
  EXPECT_THAT(reading.tracks(), IsEmpty());
  EXPECT_EQ(reading.complaints, "");
}

TEST(TracksFile, EmptyFieldMovesTheOthersLeft) {
  EXPECT_THAT(readTracks("1||T|2|A|3|B|4|C|5\n").tracks(),
              ElementsAre("1 'T' 2 'A' 3 'B' 4 'C' 5"));
  // With its title left out, a track has its artist's id for a title, and so on.
  EXPECT_THAT(readTracks("1||2|A|3|B|4|C|5\n").tracks(), ElementsAre("1 '2' 0 '3' 0 '4' 0 '5' 0"));
  EXPECT_THAT(readTracks("|||1|T|2|A|3|B|4|C|||5|||\n").tracks(),
              ElementsAre("1 'T' 2 'A' 3 'B' 4 'C' 5"));
}

TEST(TracksFile, NumbersAreReadAsTheyBegin) {
  EXPECT_THAT(readTracks(" 1x|T|+2|A|\t3|B|-1|C|x\n").tracks(),
              ElementsAre("1 'T' 2 'A' 3 'B' 4294967295 'C' 0"));
  EXPECT_THAT(readTracks("4294967295|T|4294967296|A|0|B|-0|C|-3\n").tracks(),
              ElementsAre("4294967295 'T' 0 'A' 0 'B' 0 'C' 4294967293"));
}

TEST(TracksFile, TextsKeepTheirBlanks) {
  EXPECT_THAT(readTracks("1 | T | 2 | A | 3 | B | 4 | C | 5\n").tracks(),
              ElementsAre("1 ' T ' 2 ' A ' 3 ' B ' 4 ' C ' 5"));
}

TEST(TracksFile, CarriageReturnStaysInTheLastText) {
  EXPECT_THAT(readTracks("1|T|2|A|3|B|4|C\r\n2|U|2|A|3|B|4|C|5\r\n").tracks(),
              ElementsAre("1 'T' 2 'A' 3 'B' 4 'C\r' 0", "2 'U' 2 'A' 3 'B' 4 'C' 5"));
}

// The rating is left out, but what ends the line makes a field of its own.
TEST(TracksFile, CarriageReturnAfterASeparatorIsARating) {
  EXPECT_THAT(readTracks("1|T|2|A|3|B|4|C|\r\n").tracks(),
              ElementsAre("1 'T' 2 'A' 3 'B' 4 'C' 0"));
}

TEST(TracksFile, LastLineNeedsNoLineFeed) {
  EXPECT_THAT(readTracks("1|T|2|A|3|B|4|C\n2|U|2|A|3|B|4|C").tracks(),
              ElementsAre("1 'T' 2 'A' 3 'B' 4 'C' 0", "2 'U' 2 'A' 3 'B' 4 'C' 0"));
}

TEST(TracksFile, ZeroAndHighBytesAreTexts) {
  const std::string line("1|T\0t|2|\xE9|3|B|4|C\n", 18);
  EXPECT_THAT(readTracks(line).tracks(),
              ElementsAre(std::string("1 'T\0t' 2 '\xE9' 3 'B' 4 'C' 0", 27)));
}

TEST(TracksFile, ByteOrderMarkMakesTheFirstIdZero) {
  EXPECT_THAT(readTracks("\xEF\xBB\xBF"
                         "1|T|2|A|3|B|4|C\n")
                  .tracks(),
              ElementsAre("0 'T' 2 'A' 3 'B' 4 'C' 0"));
}

TEST(ListFiles, MissingTracksFileIsTold) {
  const ListReading reading = readLists(kMissing, "Mix\n5\n101\n-1\n");
  EXPECT_EQ(reading.output, "Unable to open file tracks.txt");
  EXPECT_THAT(reading.playlists(), ElementsAre("5 'Mix'"));
}

TEST(ListFiles, MissingPlaylistsFileIsTold) {
  const ListReading reading = readLists("1|T|2|A|3|B|4|C\n", kMissing);
  EXPECT_EQ(reading.output, "Unable to open file playlists.txt");
  EXPECT_THAT(reading.tracks(), ElementsAre("1 'T' 2 'A' 3 'B' 4 'C' 0"));
}

TEST(ListFiles, BothMissingAreToldOnOneLine) {
  EXPECT_EQ(readLists(kMissing, kMissing).output,
            "Unable to open file tracks.txtUnable to open file playlists.txt");
}

TEST(ListFiles, FolderCannotBeOpened) {
  const ListReading reading = readLists(kFolder, kFolder);
  EXPECT_EQ(reading.output, "Unable to open file tracks.txtUnable to open file playlists.txt");
  EXPECT_EQ(reading.complaints, "");
  EXPECT_THAT(reading.tracks(), IsEmpty());
}

// Calls a function with the number of tracks before it takes the next one.
class WatchedManager : public TrackManager {
 public:
  explicit WatchedManager(std::function<void(int)> watch) : watch_(std::move(watch)) {}

  Track* addTrack(std::string_view title, std::uint32_t mediaId, std::string_view artistName,
                  std::uint32_t artistId, std::string_view albumName, std::uint32_t albumId,
                  std::string_view genreName, std::uint32_t genreId,
                  std::uint32_t rating) override {
    watch_(added_++);
    return TrackManager::addTrack(title, mediaId, artistName, artistId, albumName, albumId,
                                  genreName, genreId, rating);
  }

 private:
  std::function<void(int)> watch_;
  int added_ = 0;
};

// By then another thread reads the file.
TEST(ListFiles, FailureAmongManyTracksEndsTheReading) {
  const TempDir dir;
  std::string tracks;
  for (int i = 1; i <= 30'000; ++i) tracks += std::to_string(i) + "|T|2|A|3|B|4|C\n";
  writeFile(dir / "tracks.txt", tracks);
  WatchedManager manager([](int added) {
    if (added == 10'000) throw std::length_error("full");
  });
  const std::string path = dir / "tracks.txt";
  EXPECT_THROW(readInventoryFiles(manager, path.c_str(), path.c_str(), false), std::length_error);
  EXPECT_EQ(manager.tracksEnd() - manager.tracksBegin(), 10'000);
}

// Tracks are taken so slowly that the next ones are read in the meantime.
TEST(ListFiles, TextsStayWhileOthersAreRead) {
  const TempDir dir;
  std::string tracks;
  const auto titleOf = [](std::uint32_t id) {
    return "title " + std::string(id % 40, 't') + std::to_string(id);
  };
  for (std::uint32_t id = 1; id <= 30'000; ++id) {
    tracks += std::to_string(id) + "|" + titleOf(id) + "|2|A|3|B|4|C\n";
  }
  writeFile(dir / "tracks.txt", tracks);
  WatchedManager manager([](int added) {
    if (added % 500 == 499) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  });
  const std::string path = dir / "tracks.txt";
  const std::string missing = dir / "missing";
  const CapturedStream output(std::cout);
  readInventoryFiles(manager, path.c_str(), missing.c_str(), false);
  ASSERT_EQ(manager.tracksEnd() - manager.tracksBegin(), 30'000);
  for (auto it = manager.tracksBegin(); it != manager.tracksEnd(); ++it) {
    ASSERT_EQ((*it)->getTitle(), titleOf((*it)->getMediaId()));
  }
}

// A standard error that throws what is written there at whoever writes.
class RefusedComplaints : public std::streambuf {
 public:
  RefusedComplaints() : old_(std::cerr.rdbuf(this)) { std::cerr.exceptions(std::ios::badbit); }
  RefusedComplaints(const RefusedComplaints&) = delete;
  RefusedComplaints& operator=(const RefusedComplaints&) = delete;
  ~RefusedComplaints() override {
    std::cerr.clear();
    std::cerr.exceptions(std::ios::goodbit);
    std::cerr.rdbuf(old_);
  }

 protected:
  std::streamsize xsputn(const char* /*data*/, std::streamsize /*size*/) override {
    throw std::length_error("refused");
  }

 private:
  std::streambuf* old_;
};

TEST(ListFiles, FailureOfTheReadingThreadReachesTheCaller) {
  const TempDir dir;
  std::string tracks;
  for (int i = 1; i <= 20'000; ++i) tracks += std::to_string(i) + "|T|2|A|3|B|4|C\n";
  writeFile(dir / "tracks.txt", tracks + "1|too|few\n");
  TrackManager manager;
  const std::string path = dir / "tracks.txt";
  const RefusedComplaints refused;
  EXPECT_THROW(readInventoryFiles(manager, path.c_str(), path.c_str(), false), std::length_error);
}

TEST(ListFiles, PathInAComplaintIsPrintable) {
  const TempDir dir;
  writeFile(dir / "a\nb", "|\n");
  TrackManager manager;
  const CapturedStream output(std::cout);
  const CapturedStream complaints(std::cerr);
  readInventoryFiles(manager, (dir / "a\nb").c_str(), "", true);
  EXPECT_EQ(output.text(), "Unable to open file ");
  EXPECT_THAT(complaints.text(), ::testing::EndsWith("/a\\x0Ab:1: expected 8 fields, found 0: line "
                                                     "skipped\n"));
}

TEST(PrintInventory, ShowsTracksAndPlaylists) {
  ListReading reading = readLists(
      "101|First Song|7|Some Artist|30|Some Album|4|Pop|2\n"
      "4294967295|Last|0|Nobody|4294967294|None|2147483648|Rock\n",
      "Road Mix\n5\n101\n4294967294\n101\n-1\nEmpty\n6\n\n");
  const CapturedStream output(std::cout);
  printInventory(*reading.manager);
  EXPECT_EQ(output.text(),
            "================================================\n"
            "TRACKS:\n"
            "First Song | Some Artist | Some Album | Pop | \n"
            "  101 | 7 | 30 | 4 | \n"
            "Last | Nobody | None | Rock | \n"
            "  -1 | 0 | -2 | -2147483648 | \n"
            "\n"
            "PLAYLISTS:\n"
            "Road Mix\n"
            " | First Song | First Song\n"
            "Empty\n"
            "\n"
            "================================================\n");
}

TEST(PrintInventory, ShowsNothingOfNothing) {
  const TrackManager manager;
  const CapturedStream output(std::cout);
  printInventory(manager);
  EXPECT_EQ(output.text(),
            "================================================\n"
            "TRACKS:\n"
            "\n"
            "PLAYLISTS:\n"
            "================================================\n");
}

}  // namespace
}  // namespace Orvane::test
