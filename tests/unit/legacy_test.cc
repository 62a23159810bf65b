#include "cli/legacy.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "test_support.h"

namespace Orvane::test {
namespace {

constexpr std::string_view kHint = "./skeinmake --help  for usage information\n";
constexpr std::string_view kHelp =
    "\nThis program creates a binary file representing the inventory a consumer.\n"
    "\n <usage>: the-program <--param> <filelist> <playlistFiles> <outputFile> <xmlFile>\n"
    "--param: \n"
    "\t--one-table\tCreates a binary file contains a one table representation of data\n"
    "\t--two-table\tCreates a binary file contains a two table representation of data\n"
    "\t--playlistID\tConsider the first integer after the playlist name as the playlist id\n"
    "<usage>: the-program <--X-table> <--playlistID> <filelist> <playlistFiles> <outputFile> "
    "<xmlFile>\n";

class Legacy : public ::testing::Test {
 protected:
  Legacy() {
    writeFile(tracks_, "1|Song|2|Singer|3|Record|4|Style\n");
    writeFile(playlists_, "Mix\n1\n-1\n");
    writeFile(xml_, "<x><menu name=\"Songs\"><media name=\"b\"/><media name=\"a\"/></menu></x>");
  }

  // Runs the routine with these arguments; `said_` is what it wrote to standard output.
  int run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "the-program");
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) argv.push_back(argument.data());
    const auto argc = static_cast<int>(argv.size());
    argv.push_back(nullptr);
    const CapturedStream output(std::cout);
    const int status = legacyMain(argc, argv.data());
    said_ = output.text();
    return status;
  }

  // The names in the file in the order of its one table's records, in one line.
  std::string outputNames() const {
    const std::string file = readFile(output_);
    std::string names;
    for (std::size_t at = 32; at < file.size(); at += 80) {
      names += std::string(file.c_str() + at + 12) + " ";
    }
    return names;
  }

  const TempDir dir_;
  const std::string tracks_ = dir_ / "tracks";
  const std::string playlists_ = dir_ / "playlists";
  const std::string output_ = dir_ / "out";
  const std::string xml_ = dir_ / "menu.xml";
  std::string said_;
};

constexpr std::string_view kCategories = "root Playlists Artists Albums Songs Genres Favorites ";

TEST_F(Legacy, NoArgumentsGiveTheHint) {
  EXPECT_EQ(run({}), 0);
  EXPECT_EQ(said_, kHint);
}

TEST_F(Legacy, HelpShowsTheProgramsNameTwice) {
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_EQ(said_, kHelp);
}

TEST_F(Legacy, HelpComesBeforeEverythingElse) {
  EXPECT_EQ(run({"--help", tracks_, playlists_, output_, xml_}), 0);
  EXPECT_EQ(said_, kHelp);
  EXPECT_FALSE(std::filesystem::exists(output_));
}

TEST_F(Legacy, HelpCountsOnlyAsTheFirstArgument) {
  EXPECT_EQ(run({"--one-table", "--help"}), 0);
  EXPECT_EQ(said_, kHint);
}

TEST_F(Legacy, ThreeArgumentsGiveTheHint) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--one-table"},
                                                    {"--one-table", tracks_},
                                                    {"--one-table", tracks_, playlists_},
                                                    {"--one-table", "--playlistID", tracks_}}) {
    EXPECT_EQ(run(arguments), 0);
    EXPECT_EQ(said_, kHint);
  }
}

TEST_F(Legacy, NoOutputPositionGivesTheHintBeforeAnythingIsRead) {
  EXPECT_EQ(run({"--one-table", "--playlistID", dir_ / "missing", dir_ / "missing too"}), 0);
  EXPECT_EQ(said_, kHint);
}

TEST_F(Legacy, WithoutIdsTheSecondLineIsATrack) {
  EXPECT_EQ(run({"--one-table", tracks_, playlists_, output_}), 0);
  EXPECT_EQ(said_, "");
  EXPECT_EQ(outputNames(), std::string(kCategories) +
                               "Mix Song Singer Record Song Record Song Song Style Song Three "
                               "Stars Two Stars One Star ");
}

TEST_F(Legacy, WithIdsTheSecondLineIsTheId) {
  EXPECT_EQ(run({"--one-table", "--playlistID", tracks_, playlists_, output_}), 0);
  EXPECT_EQ(said_, "");
  EXPECT_EQ(outputNames(), std::string(kCategories) +
                               "Mix Singer Record Song Record Song Song Style Song Three Stars "
                               "Two Stars One Star ");
  // Seven records of root and categories come before the playlist's.
  EXPECT_EQ(readFile(output_).substr(32 + 7 * 80 + 8, 4), std::string("\1\0\0\0", 4));
}

TEST_F(Legacy, SwitchesAreComparedWhole) {
  // The wrong word stands for the tracks file, so that the playlists file is the output.
  EXPECT_EQ(run({"--one-table", "--playlistId", tracks_, playlists_, xml_}), 0);
  EXPECT_EQ(said_, "Unable to open file --playlistId");
  EXPECT_EQ(readFile(playlists_).substr(0, 4), std::string("\0\1\0\0", 4));
}

TEST_F(Legacy, TwoTableWritesTwoTables) {
  EXPECT_EQ(run({"--two-table", tracks_, playlists_, output_}), 0);
  EXPECT_EQ(readFile(output_).substr(8, 1), "\2");
}

TEST_F(Legacy, XmlFileIsMergedAndSorted) {
  EXPECT_EQ(run({"--one-table", tracks_, playlists_, output_, xml_}), 0);
  EXPECT_EQ(said_, "");
  EXPECT_EQ(outputNames(), std::string(kCategories) +
                               "Songs Mix Song Singer Record Song Record Song Song Style Song "
                               "Three Stars Two Stars One Star a b ");
  EXPECT_EQ(run({"--one-table", "--playlistID", tracks_, playlists_, output_, xml_}), 0);
  EXPECT_EQ(outputNames(), std::string(kCategories) +
                               "Songs Mix Singer Record Song Record Song Song Style Song Three "
                               "Stars Two Stars One Star a b ");
}

TEST_F(Legacy, FurtherArgumentsAreIgnored) {
  EXPECT_EQ(run({"--one-table", tracks_, playlists_, output_, xml_, "more", "--help"}), 0);
  EXPECT_EQ(said_, "");
}

TEST_F(Legacy, UnknownSwitchLeavesTheOutputAlone) {
  for (const char* const name : {"--three-table", "--ONE-TABLE", "--one", "-one-table", ""}) {
    writeFile(output_, "as it was");
    EXPECT_EQ(run({name, tracks_, dir_ / "missing", output_}), 0);
    // It shows only after both inputs have been read.
    EXPECT_EQ(said_,
              "Unable to open file " + (dir_ / "missing") + "<" + name + "> Invalid argument\n");
    EXPECT_EQ(readFile(output_), "as it was");
    std::filesystem::remove(output_);
    EXPECT_EQ(run({name, tracks_, playlists_, output_}), 0);
    EXPECT_FALSE(std::filesystem::exists(output_));
  }
}

}  // namespace
}  // namespace Orvane::test
