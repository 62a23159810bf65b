#include "cli/options.h"

#include <argp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "test_support.h"

namespace Orvane {
namespace {

// Parses the words, keeping them alive as the process's own arguments would be.
class OptionsTest : public ::testing::Test {
 protected:
  const Options& parse(std::vector<std::string> words) {
    words_ = std::move(words);
    words_.insert(words_.begin(), "skeinmake");
    std::vector<char*> pointers;
    for (std::string& word : words_) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    options_ = Options();
    parseOptions(static_cast<int>(words_.size()), pointers.data(), options_);
    return options_;
  }

  std::vector<std::string> words_;
  Options options_;
};

using OptionsDeathTest = OptionsTest;

TEST_F(OptionsTest, Defaults) {
  const Options& options = parse({});
  EXPECT_EQ(options.tables, 2);
  EXPECT_TRUE(options.xmlMode);
  EXPECT_EQ(options.tracksFile, nullptr);
  EXPECT_EQ(options.playlistsFile, nullptr);
  EXPECT_EQ(options.xmlFile, nullptr);
  EXPECT_EQ(options.outputFile, nullptr);
  EXPECT_EQ(options.rootName, nullptr);
  EXPECT_FALSE(options.tryAndBuy);
  EXPECT_EQ(options.tryAndBuyPartitionId, 0);
}

TEST_F(OptionsTest, EachShortOptionSetsItsField) {
  const Options& options = parse({"-T", "1", "-M", "INVENTORY", "-t", "tracks", "-p", "lists", "-x",
                                  "menu", "-o", "out", "-r", "Home", "-b", "17"});
  EXPECT_EQ(options.tables, 1);
  EXPECT_FALSE(options.xmlMode);
  EXPECT_STREQ(options.tracksFile, "tracks");
  EXPECT_STREQ(options.playlistsFile, "lists");
  EXPECT_STREQ(options.xmlFile, "menu");
  EXPECT_STREQ(options.outputFile, "out");
  EXPECT_STREQ(options.rootName, "Home");
  EXPECT_TRUE(options.tryAndBuy);
  EXPECT_EQ(options.tryAndBuyPartitionId, 17);
}

TEST_F(OptionsTest, EachLongOptionSetsItsField) {
  const Options& options =
      parse({"--tables=1", "--inputMode=INVENTORY", "--tracksFile=tracks", "--playlistsFile=lists",
             "--xmlFile=menu", "--output=out", "--rootName=Home", "--tryAndBuyPartition=17"});
  EXPECT_EQ(options.tables, 1);
  EXPECT_FALSE(options.xmlMode);
  EXPECT_STREQ(options.tracksFile, "tracks");
  EXPECT_STREQ(options.playlistsFile, "lists");
  EXPECT_STREQ(options.xmlFile, "menu");
  EXPECT_STREQ(options.outputFile, "out");
  EXPECT_STREQ(options.rootName, "Home");
  EXPECT_TRUE(options.tryAndBuy);
  EXPECT_EQ(options.tryAndBuyPartitionId, 17);
}

TEST_F(OptionsTest, TextsPointIntoTheArguments) {
  const Options& options = parse({"-o", "out", "--rootName", "Home"});
  EXPECT_EQ(options.outputFile, words_[2].data());
  EXPECT_EQ(options.rootName, words_[4].data());
}

TEST_F(OptionsTest, TablesIsReadAsFarAsItIsANumber) {
  for (const char* one : {"1", "1x", " 1", "+1", "01", "1.9", "1 2"}) {
    EXPECT_EQ(parse({"-T", one}).tables, 1) << one;
  }
  for (const char* two : {"2", "2x", "\t2", "+2", "0002"}) {
    EXPECT_EQ(parse({"-T", two}).tables, 2) << two;
  }
}

TEST_F(OptionsTest, PartitionIdIsReadAsFarAsItIsANumber) {
  const std::pair<const char*, std::int32_t> kCases[] = {{"17", 17},
                                                         {"-1", -1},
                                                         {" 8x", 8},
                                                         {"abc", 0},
                                                         {"", 0},
                                                         {"0x1F", 0},
                                                         {"2147483647", 2147483647}};
  for (const auto& [text, value] : kCases) {
    const Options& options = parse({"-b", text});
    EXPECT_TRUE(options.tryAndBuy) << text;
    EXPECT_EQ(options.tryAndBuyPartitionId, value) << text;
  }
}

TEST_F(OptionsTest, LastOfARepeatedOptionCounts) {
  const Options& options = parse(
      {"-T",        "1",  "-T", "2",           "-M", "XML", "-M", "INVENTORY", "-o", "a", "-o",
       "b",         "-x", "a",  "--xmlFile=b", "-r", "a",   "-r", "",          "-b", "1", "-b",
       "no number", "-t", "a",  "-t",          "b",  "-p",  "a",  "-p",        "b"});
  EXPECT_EQ(options.tables, 2);
  EXPECT_FALSE(options.xmlMode);
  EXPECT_STREQ(options.outputFile, "b");
  EXPECT_STREQ(options.xmlFile, "b");
  EXPECT_STREQ(options.rootName, "");
  EXPECT_EQ(options.tryAndBuyPartitionId, 0);
  EXPECT_STREQ(options.tracksFile, "b");
  EXPECT_STREQ(options.playlistsFile, "b");
  EXPECT_TRUE(parse({"-M", "INVENTORY", "-M", "XML"}).xmlMode);
}

TEST_F(OptionsTest, StrayWordsAreToldAndIgnored) {
  const test::CapturedStream output(std::cout);
  const Options& options = parse({"stray", "-o", "out", "--", "-r"});
  EXPECT_EQ(output.text(), "IGNORED: [stray]\nIGNORED: [-r]\n");
  EXPECT_STREQ(options.outputFile, "out");
  EXPECT_EQ(options.rootName, nullptr);
}

TEST_F(OptionsDeathTest, BadValuesEndWithTheUsageStatus) {
  for (const char* bad : {"3", "0", "abc", "-1", "", "12", "x1"}) {
    EXPECT_EXIT(parse({"-T", bad}), ::testing::ExitedWithCode(argp_err_exit_status), "Usage:")
        << bad;
  }
  for (const char* bad : {"xml", "inventory", "", "XML ", "XMLX", "INVENTOR"}) {
    EXPECT_EXIT(parse({"-M", bad}), ::testing::ExitedWithCode(argp_err_exit_status), "Usage:")
        << bad;
  }
}

TEST_F(OptionsDeathTest, RequiredFilesDependOnTheMode) {
  const auto ends = ::testing::ExitedWithCode(1);
  Options options;
  EXPECT_EXIT(requireFiles(options), ends, "^output file not specified\\. Try");
  options.outputFile = "out";
  EXPECT_EXIT(requireFiles(options), ends, "^xmlFile input file not specified \\[while");
  options.xmlMode = false;
  options.xmlFile = "not enough";
  EXPECT_EXIT(requireFiles(options), ends, "^tracksFile or playlistsFile input files not");
  options.tracksFile = "tracks";
  EXPECT_EXIT(requireFiles(options), ends, "^tracksFile or playlistsFile input files not");
  options.tracksFile = nullptr;
  options.playlistsFile = "lists";
  EXPECT_EXIT(requireFiles(options), ends, "^tracksFile or playlistsFile input files not");
}

TEST_F(OptionsDeathTest, RequiredFilesSatisfied) {
  Options options;
  options.outputFile = "out";
  options.xmlFile = "menu";
  EXPECT_EXIT((requireFiles(options), std::exit(7)), ::testing::ExitedWithCode(7), "^$");
  options.xmlFile = nullptr;
  options.xmlMode = false;
  options.tracksFile = "tracks";
  options.playlistsFile = "lists";
  EXPECT_EXIT((requireFiles(options), std::exit(7)), ::testing::ExitedWithCode(7), "^$");
}

}  // namespace
}  // namespace Orvane
