// Random documents, read with the reader and with the plain rendering: about half of them are
// well-formed, and made of all that makes an element more than a start tag of plain values.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <random>
#include <string>

#include "plain_xml_reading.h"
#include "seeded_random.h"
#include "test_support.h"
#include "xml_reading.h"

namespace Orvane::test {
namespace {

class RandomDocument {
 public:
  explicit RandomDocument(std::mt19937& random) : random_(random) {}

  std::string text() {
    const std::string before = pick(kBefore);
    depth_ = 0;
    return before + element() + pick(kBehind);
  }

 private:
  using Words = std::array<const char*, 12>;

  static constexpr Words kBefore = {"",
                                    "",
                                    "",
                                    "",
                                    "",
                                    "",
                                    "<!-- before -->",
                                    "<?xml version='1.0' encoding='ISO-8859-1'?>",
                                    "<!DOCTYPE r>",
                                    "<!DOCTYPE r [<!ENTITY e 'E'>]>",
                                    "<!DOCTYPE r [<!ATTLIST m name CDATA 'given' id ID #IMPLIED>]>",
                                    "<!DOCTYPE r [<!ENTITY e '<m/>t'><!-- c -->]>"};
  static constexpr Words kBehind = {"", "", "", "", "", "", "", "", "", "<?p?>", "<!-- b -->", "x"};
  static constexpr Words kTags = {"m",     "menu",    "media",  "media", "media", "partition",
                                  "Media", "p:media", "p:menu", "q:m",   "mm",    "partition"};
  static constexpr Words kNames = {"name",       "name",        "rectype", "mediaid",
                                   "rating",     "name",        "id",      "p:name",
                                   "attribmask", "partitionid", "xml:id",  "p:mediaid"};
  static constexpr Words kValues = {"1",  "",   "a&amp;b", "&#38;", "x", "42 y",
                                    "-1", " 7", "\t\n8",   "a&lt;", "i", "99999999999"};
  static constexpr Words kContents = {"text",          " ",     "\n",      "<!-- c -->", "<?p d?>",
                                      "<![CDATA[c]]>", "&gt;",  "&#233;x", "<!---->",    "]] >",
                                      "\r\n",          "t&amp;"};

  const char* pick(const Words& words) { return words.at(random_() % words.size()); }
  bool oneIn(unsigned n) { return random_() % n == 0; }

  std::string attributes() {
    std::string text;
    if (oneIn(4) || depth_ == 0) text += " xmlns:p='urn:p'";
    if (oneIn(depth_ == 0 ? 2 : 12)) text += " xmlns:q='urn:q'";
    if (oneIn(20)) text += " xmlns='urn:d'";
    std::string used;
    for (std::size_t i = random_() % 5; i > 0; --i) {
      const std::string name = pick(kNames);
      if (used.find(" " + name + " ") != std::string::npos && !oneIn(50)) continue;
      used += " " + name + " ";
      // So many that they are mostly not the same.
      const bool isId = name.ends_with("id") && name.size() < 7;
      const std::string value = isId ? "i" + std::to_string(random_() % 200) : pick(kValues);
      text += " " + name + (oneIn(2) ? "='" + value + "'" : "=\"" + value + "\"");
    }
    return text;
  }

  std::string element() {
    const std::string tag = depth_ == 0 ? "r" : pick(kTags);
    const std::string start = "<" + tag + attributes();
    if (oneIn(4) && depth_ > 0) return start + "/>";
    std::string text = start + ">";
    ++depth_;
    for (std::size_t i = random_() % 6; i > 0; --i) {
      if (oneIn(40)) {
        text += "&e;";
      } else if (depth_ < 6 && !oneIn(3)) {
        text += element();
      } else {
        text += pick(kContents);
      }
    }
    --depth_;
    return text + (oneIn(150) ? "</" : "</" + tag + ">");
  }

  std::mt19937& random_;
  int depth_ = 0;
};

TEST(RandomXml, IsReadAsThePlainRenderingReadsIt) {
  std::mt19937 random = seededRandom(1);
  const TempDir dir;
  const std::string path = dir / "menu.xml";
  int wellFormed = 0;
  for (int i = 0; i < 2000; ++i) {
    const std::string document = RandomDocument(random).text();
    SCOPED_TRACE(document);
    writeFile(path, document);
    ::testing::internal::CaptureStderr();
    const PlainXmlReading expected(path);
    const XmlReading actual = readXmlFile(path);
    ::testing::internal::GetCapturedStderr();
    ASSERT_EQ(actual.output, expected.output);
    ASSERT_EQ(actual.lines(), expected.lines());
    wellFormed += expected.output.empty() ? 1 : 0;
  }
  EXPECT_GT(wellFormed, 500);
  EXPECT_LT(wellFormed, 1900);
}

}  // namespace
}  // namespace Orvane::test
