#include "inventory/xml_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "allocation_probe.h"
#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "test_support.h"
#include "xml_reading.h"

namespace Orvane {
namespace {

using test::nestedDocument;
using test::readXml;
using test::readXmlFile;
using test::repeated;
using test::XmlReading;
using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr const char* kRoot = "0: 1 0 'root' 7 0 0";

// The lines below the tree's root, for a document whose root element holds `content`.
std::vector<std::string> nodesOf(std::string_view content) {
  const XmlReading reading = readXml("<inventory>" + std::string(content) + "</inventory>");
  EXPECT_EQ(reading.output, "");
  std::vector<std::string> lines = reading.lines();
  EXPECT_EQ(lines.front(), kRoot);
  lines.erase(lines.begin());
  return lines;
}

// The value of one numeric attribute with that text.
std::uint32_t numberOf(std::string_view text) {
  const XmlReading reading = readXml("<r><media mediaid=\"" + std::string(text) + "\"/></r>");
  return (*reading.tree->getRoot()->childrenBegin())->getMediaId();
}

TEST(XmlReader, RootElementAloneGivesTheRootAlone) {
  const XmlReading reading = readXml("<inventory/>");
  EXPECT_THAT(reading.lines(), ElementsAre(kRoot));
  EXPECT_EQ(reading.output, "");
}

TEST(XmlReader, RootElementNamesTheRootAndNothingElse) {
  EXPECT_THAT(
      readXml("<media name='Home' rectype='3' mediaid='4' rating='5' attribmask='6'/>").lines(),
      ElementsAre("0: 1 0 'Home' 7 0 0"));
  EXPECT_THAT(readXml("<partition name='' partitionid='4'/>").lines(),
              ElementsAre("0: 1 0 '' 7 0 0"));
}

TEST(XmlReader, LongRootNameGoesInFrontOfTheOldOne) {
  const std::string name(65, 'n');
  EXPECT_THAT(readXml("<r name='" + name.substr(1) + "'/>").lines(),
              ElementsAre("0: 1 0 '" + name.substr(1) + "' 7 0 0"));
  EXPECT_THAT(readXml("<r name='" + name + "'/>").lines(),
              ElementsAre("0: 1 0 '" + name.substr(3) + "root' 7 0 0"));
}

TEST(XmlReader, MenuWithMedia) {
  EXPECT_THAT(
      nodesOf("<menu name='A'><media name='x' mediaid='5' rating='2' attribmask='3'/></menu>"),
      ElementsAre("1: 1 0 'A' 7 0 0", "2: 2 5 'x' 7 2 3"));
}

TEST(XmlReader, ElementsWithoutAttributesGetTheDefaults) {
  EXPECT_THAT(
      nodesOf("<media/><partition/><menu/><anything/>"),
      ElementsAre("1: 2 0 '' 7 0 0", "1: 1 0 '' 7 0 0", "1: 1 0 '' 7 0 0", "1: 1 0 '' 7 0 0"));
}

TEST(XmlReader, Partition) {
  EXPECT_THAT(nodesOf("<partition name='P' partitionid='9' rectype='7'/>"),
              ElementsAre("1: 1 0 'P' 7 0 9"));
}

TEST(XmlReader, RecTypeIsReadOnEveryElement) {
  EXPECT_THAT(nodesOf("<media rectype='0'/><partition rectype='11'/><menu rectype='4'/>"),
              ElementsAre("1: 2 0 '' 0 0 0", "1: 1 0 '' 11 0 0", "1: 1 0 '' 4 0 0"));
}

TEST(XmlReader, EachKindTakesItsOwnAttributesOnly) {
  constexpr std::string_view kAll =
      " name='n' rectype='1' mediaid='2' rating='3' attribmask='4' partitionid='5' other='6'/>";
  const auto with = [&](const char* tag) { return tag + std::string(kAll); };
  EXPECT_THAT(nodesOf(with("<media") + with("<partition") + with("<menu")),
              ElementsAre("1: 2 2 'n' 1 3 4", "1: 1 0 'n' 1 0 5", "1: 1 0 'n' 1 0 0"));
}

TEST(XmlReader, TagsAreComparedWhole) {
  EXPECT_THAT(nodesOf("<Media mediaid='1'/><media2 mediaid='1'/><medi mediaid='1'/>"
                      "<Partition partitionid='1'/><partitions partitionid='1'/>"),
              ElementsAre("1: 1 0 '' 7 0 0", "1: 1 0 '' 7 0 0", "1: 1 0 '' 7 0 0",
                          "1: 1 0 '' 7 0 0", "1: 1 0 '' 7 0 0"));
}

TEST(XmlReader, AttributeNamesMindCase) {
  EXPECT_THAT(nodesOf("<media Name='n' MediaId='1' recType='2' RATING='3'/>"),
              ElementsAre("1: 2 0 '' 7 0 0"));
}

TEST(XmlReader, MediaMayHoldChildren) {
  EXPECT_THAT(nodesOf("<media name='a'><media name='b'><menu name='c'/></media></media>"),
              ElementsAre("1: 2 0 'a' 7 0 0", "2: 2 0 'b' 7 0 0", "3: 1 0 'c' 7 0 0"));
}

TEST(XmlReader, KeepsDocumentOrderAndDuplicates) {
  EXPECT_THAT(nodesOf("<m name='b'><m name='2'/><m name='1'/></m><m name='a'/><m name='b'/>"),
              ElementsAre("1: 1 0 'b' 7 0 0", "2: 1 0 '2' 7 0 0", "2: 1 0 '1' 7 0 0",
                          "1: 1 0 'a' 7 0 0", "1: 1 0 'b' 7 0 0"));
}

TEST(XmlReader, NumbersFollowStrtol) {
  const std::pair<const char*, std::uint32_t> kCases[] = {
      {"5", 5},
      {" 42xyz", 42},
      {"&#9;&#10;&#13; 42", 42},
      {"12abc", 12},
      {"abc", 0},
      {"", 0},
      {" ", 0},
      {"0x1F", 0},
      {"010", 10},
      {"+7", 7},
      {"-1", 0xFFFFFFFF},
      {"- 1", 0},
      {"+-1", 0},
      {"1.9", 1},
      {"4294967295", 0xFFFFFFFF},
      {"4294967296", 0},
      {"4294967301", 5},
      {"-4294967295", 1},
      {"9223372036854775807", 0xFFFFFFFF},
      {"9223372036854775808", 0xFFFFFFFF},  // saturates at the largest long
      {"99999999999999999999999", 0xFFFFFFFF},
      {"-9223372036854775808", 0},
      {"-99999999999999999999999", 0},  // saturates at the smallest
      {"\xC2\xA0"
       "5",
       0},              // a no-break space is no blank
      {"\xD9\xA5", 0},  // an Arabic-Indic five is no digit
  };
  for (const auto& [text, value] : kCases) EXPECT_EQ(numberOf(text), value) << '"' << text << '"';
}

TEST(XmlReader, EveryNumberIsReadTheSameWay) {
  EXPECT_THAT(nodesOf("<media rectype=' -1x' mediaid=' 2x' rating='-1' attribmask='0x9'/>"
                      "<partition rectype='abc' partitionid='4294967297'/>"),
              ElementsAre("1: 2 2 '' 4294967295 4294967295 0", "1: 1 0 '' 0 0 1"));
}

TEST(XmlReader, LongNamesAreCutTo62Bytes) {
  const std::string name(64, 'n');
  EXPECT_THAT(nodesOf("<m name='" + name + "'/><m name='" + name + "x'/>"),
              ElementsAre("1: 1 0 '" + name + "' 7 0 0", "1: 1 0 '" + name.substr(2) + "' 7 0 0"));
}

TEST(XmlReader, NameLengthCountsBytes) {
  const std::string name = repeated("\xC3\xA9", 32);
  EXPECT_THAT(
      nodesOf("<m name='" + name + "'/><m name='" + name + "x'/>"),
      ElementsAre("1: 1 0 '" + name + "' 7 0 0", "1: 1 0 '" + name.substr(0, 62) + "' 7 0 0"));
}

TEST(XmlReader, OnlyElementsCountDirectlyUnderTheRoot) {
  EXPECT_THAT(nodesOf("text<!-- comment --><?pi data?><![CDATA[cdata]]>&amp;<m name='a'/>tail"),
              ElementsAre("1: 1 0 'a' 7 0 0"));
}

TEST(XmlReader, EverythingCountsDeeperDown) {
  EXPECT_THAT(
      nodesOf("<m>text<!-- comment --><?pi data?><![CDATA[cdata]]><m name='a'/>tail</m>"),
      ElementsAre("1: 1 0 '' 7 0 0", "2: 0 0 '' 0 0 0", "2: 0 0 '' 0 0 0", "2: 0 0 '' 0 0 0",
                  "2: 0 0 '' 0 0 0", "2: 1 0 'a' 7 0 0", "2: 0 0 '' 0 0 0"));
}

TEST(XmlReader, WhiteSpaceCountsNowhere) {
  EXPECT_THAT(nodesOf("\n \t<m>\n\t \r\n<m> </m>\n</m>\n"),
              ElementsAre("1: 1 0 '' 7 0 0", "2: 1 0 '' 7 0 0"));
}

TEST(XmlReader, WhiteSpaceInACdataSectionIsNoText) {
  EXPECT_THAT(nodesOf("<m><![CDATA[ ]]></m>"), ElementsAre("1: 1 0 '' 7 0 0", "2: 0 0 '' 0 0 0"));
}

TEST(XmlReader, EntityReferenceHoldsWhatTheLibraryShows) {
  const XmlReading reading = readXml("<!DOCTYPE r [<!ENTITY e 'x'>]><r><m>&e;</m>&e;</r>");
  EXPECT_EQ(reading.output, "");
  EXPECT_THAT(reading.lines(),
              ElementsAre(kRoot, "1: 1 0 '' 7 0 0", "2: 0 0 '' 0 0 0", "3: 0 0 '' 0 0 0"));
}

TEST(XmlReader, EncodingsArriveAsUtf8) {
  EXPECT_THAT(readXml("<?xml version='1.0' encoding='ISO-8859-1'?><r name='caf\xE9'/>").lines(),
              ElementsAre("0: 1 0 'caf\xC3\xA9' 7 0 0"));
  std::string wide = "\xFE\xFF";
  for (const char c : std::string_view("<r name='cafe'/>")) wide += {'\0', c};
  EXPECT_THAT(readXml(wide).lines(), ElementsAre("0: 1 0 'cafe' 7 0 0"));
}

TEST(XmlReader, ReadsIntoATreeThatIsNotFresh) {
  MenuTree tree;
  tree.getRoot()->setName("given");
  test::addMedia(*tree.getRoot(), 1, "old");
  const test::TempDir dir;
  test::writeFile(dir / "menu.xml", "<r><m name='new'/></r>");
  buildTreeFromXml((dir / "menu.xml").c_str(), tree);
  EXPECT_THAT(test::describeTree(*tree.getRoot()),
              ElementsAre("0: 1 0 'given' 7 0 0", "1: 2 1 'old' 0 0 0", "1: 1 0 'new' 7 0 0"));
}

TEST(XmlReader, FailureToParseTakesAwayOnlyWhatItAdded) {
  MenuTree tree;
  MenuNode& root = *tree.getRoot();
  root.setName("given");
  test::addMedia(root, 1, "old");
  const test::TempDir dir;
  test::writeFile(dir / "menu.xml", "<r name='new'><m name='a'><m/></m><m name='b'>&c;</m></r>");
  const test::CapturedStream output(std::cout);
  buildTreeFromXml((dir / "menu.xml").c_str(), tree);
  EXPECT_THAT(output.text(), StartsWith("Exception caught: "));
  EXPECT_THAT(test::describeTree(root), ElementsAre("0: 1 0 'given' 7 0 0", "1: 2 1 'old' 0 0 0"));
  test::addMedia(root, 2, "later");
  EXPECT_THAT(test::describeTree(root),
              ElementsAre("0: 1 0 'given' 7 0 0", "1: 2 1 'old' 0 0 0", "1: 2 2 'later' 0 0 0"));
}

TEST(XmlReader, FailureToParseLeavesTheTreeAndSaysSo) {
  const test::TempDir dir;
  test::writeFile(dir / "empty", "");
  test::writeFile(dir / "truncated", "<r name='new'><m name='a'/><m");
  test::writeFile(dir / "unbalanced", "<r name='new'><m></r>");
  test::writeFile(dir / "twice", "<r name='new'/><r/>");
  test::writeFile(dir / "no element", "<!-- only a comment -->");
  test::writeFile(dir / "undeclared", "<r name='new'><m>&nothing;</m></r>");
  test::writeFile(dir / "loop", "<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r>&a;</r>");
  test::writeFile(dir / "attribute loop",
                  "<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r name='&a;'/>");
  test::writeFile(dir / "not utf-8", "<r name='new\xFF'/>");
  std::filesystem::create_directory(dir / "folder");
  for (const char* name : {"missing", "folder", "empty", "truncated", "unbalanced", "twice",
                           "no element", "undeclared", "loop", "attribute loop", "not utf-8"}) {
    const XmlReading reading = readXmlFile(dir / name);
    EXPECT_THAT(reading.lines(), ElementsAre(kRoot)) << name;
    EXPECT_THAT(reading.output, StartsWith("Exception caught: ")) << name;
    EXPECT_EQ(reading.output.find("Exception caught: ", 1), std::string::npos) << name;
    EXPECT_EQ(reading.output.back(), '\n') << name;
  }
}

TEST(XmlReader, SaysNothingOnStandardErrorItself) {
  const test::TempDir dir;
  test::writeFile(dir / "bad", "<r><m></r>");
  ::testing::internal::CaptureStderr();
  readXmlFile(dir / "bad");
  readXmlFile(dir / "missing");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(XmlReader, FailureHalfwayLeavesAPartialTree) {
  const std::string document =
      "<r name='a name too long for a small string'>" +
      repeated(
          "<m name='a name too long for a small string'><media mediaid='1'/></m>"
          "<m name='another name &amp; another way'>text<m xml:space='default'/></m>",
          10) +
      "</r>";
  const std::vector<std::string> whole = readXml(document).lines();
  const test::TempDir dir;
  const std::string path = dir / "menu.xml";
  test::writeFile(path, document);
  bool sawPart = false;
  for (std::ptrdiff_t allowed = 0;; ++allowed) {
    ASSERT_LT(allowed, 10000);
    MenuTree tree;
    const test::CapturedStream output(std::cout);
    {
      const test::LimitedAllocations limit(allowed);
      buildTreeFromXml(path.c_str(), tree);
    }
    const std::vector<std::string> part = test::describeTree(*tree.getRoot());
    if (part == whole) break;
    EXPECT_EQ(output.text(), "Exception caught: std::bad_alloc\n");
    ASSERT_LE(part.size(), whole.size());
    EXPECT_TRUE(std::equal(part.begin() + 1, part.end(), whole.begin() + 1));
    sawPart = sawPart || part.size() > 5;
  }
  EXPECT_TRUE(sawPart);
}

TEST(XmlReader, DeepestAcceptedDocumentGoesAllTheWay) {
  int depth = 250;
  ASSERT_EQ(readXml(nestedDocument(depth)).output, "");
  while (depth < 1000 && readXml(nestedDocument(depth + 1)).output.empty()) ++depth;
  EXPECT_GE(depth, 256);
  ASSERT_LT(depth, 1000);

  const XmlReading deepest = readXml(nestedDocument(depth));
  ASSERT_EQ(deepest.lines().size(), static_cast<std::size_t>(depth));
  EXPECT_EQ(deepest.lines().back(), std::to_string(depth - 1) + ": 1 0 '' 7 0 0");
  test::RecordingBuffer buffer;
  EXPECT_TRUE(writeTwoTable(*deepest.tree, buffer));
  EXPECT_EQ(buffer.content.size(), 48U + 12U * static_cast<unsigned>(depth) + 72U * 2U);

  const XmlReading tooDeep = readXml(nestedDocument(depth + 1));
  EXPECT_THAT(tooDeep.lines(), ElementsAre(kRoot));
  EXPECT_THAT(tooDeep.output, StartsWith("Exception caught: "));
}

// The library's own accessor takes minutes for these.
TEST(XmlReader, AttributeFullOfReferencesIsReadFast) {
  const std::string references = repeated("&e;", 10000);
  const auto begin = std::chrono::steady_clock::now();
  const XmlReading reading =
      readXml("<!DOCTYPE r [<!ENTITY e '0'>]><r name='" + references + "'><media name='x" +
              references + "' mediaid='" + references + "5'/></r>");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
  EXPECT_EQ(reading.output, "");
  EXPECT_THAT(reading.lines(), ElementsAre("0: 1 0 '" + std::string(62, '0') + "root' 7 0 0",
                                           "1: 2 5 'x" + std::string(61, '0') + "' 7 0 0"));
}

}  // namespace
}  // namespace Orvane
