// Documents that are cut off, damaged or odd in every way that a small document can be, against the
// plain rendering of the mapping, and documents that are small but mean to be large.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parserInternals.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "plain_xml_reading.h"
#include "test_support.h"
#include "wide_text.h"
#include "xml_reading.h"

namespace Orvane::test {
namespace {

class HostileXml : public ::testing::Test {
 protected:
  void expectSame(std::string_view document) {
    writeFile(path_, document);
    const PlainXmlReading expected(path_);
    const XmlReading actual = readXmlFile(path_);
    ASSERT_EQ(actual.output, expected.output);
    ASSERT_EQ(actual.lines(), expected.lines());
  }

 private:
  const TempDir dir_;
  const std::string path_ = dir_ / "menu.xml";
};

const std::string kDocument =
    "<?xml version='1.0' encoding='UTF-8'?>\n<!DOCTYPE r [<!ENTITY e 'a&#65;'><!ATTLIST m name "
    "CDATA 'd'>]>\n<r name='R'>t<m name='&e;\xC3\xA9'>t<!-- c --><![CDATA[d]]><?p i?>&e;<media "
    "mediaid='5' rating=' 2x'/></m><partition partitionid='-1'/></r>\n";

TEST_F(HostileXml, EndsAtEveryByte) {
  for (const std::string& document :
       {kDocument, "\xFF\xFE" + wide("<r name='x'><m name='y'>t</m></r>", 2, false),
        wide("<?xml version='1.0' encoding='UCS-4'?><r name='x'/>", 4, true)}) {
    for (std::size_t size = 0; size <= document.size(); ++size) {
      SCOPED_TRACE(std::to_string(size) + " bytes");
      ASSERT_NO_FATAL_FAILURE(expectSame(document.substr(0, size)));
    }
  }
}

TEST_F(HostileXml, HasAZeroByteAtEveryPlace) {
  for (const std::size_t removed : {0U, 1U}) {
    for (std::size_t at = 0; at <= kDocument.size() - removed; ++at) {
      SCOPED_TRACE("byte " + std::to_string(at));
      ASSERT_NO_FATAL_FAILURE(
          expectSame(std::string(kDocument).replace(at, removed, std::string(1, '\0'))));
    }
  }
}

TEST_F(HostileXml, HasEveryByteAtEveryPlace) {
  const std::string document = "<r name='a'><media rating='1'/><m>x</m></r>";
  for (std::size_t at = 0; at <= document.size(); ++at) {
    for (int value = 0; value < 256; ++value) {
      SCOPED_TRACE("byte " + std::to_string(at) + " is " + std::to_string(value));
      const std::string byte(1, static_cast<char>(value));
      ASSERT_NO_FATAL_FAILURE(expectSame(std::string(document).replace(at, 1, byte)));
    }
  }
}

TEST_F(HostileXml, HasNumbersAtEveryEdge) {
  for (const std::string digits :
       {"0", "1", "2147483647", "2147483648", "2147483649", "4294967295", "4294967296",
        "4294967297", "9223372036854775806", "9223372036854775807", "9223372036854775808",
        "18446744073709551615", "18446744073709551616", "99999999999999999999999999999"}) {
    for (const std::string before :
         {"", "-", "+", " ", "&#9;-", "000000000000000000000000000000", "-&z;&z;", "&b;+&z;"}) {
      const std::string number = before + digits;
      SCOPED_TRACE(number);
      ASSERT_NO_FATAL_FAILURE(expectSame(
          "<!DOCTYPE r [<!ENTITY z '000000000000000000000'><!ENTITY b ' &#9;&#10;  '>]><r><media "
          "rectype='" +
          number + "' mediaid='" + number + "' rating='" + number + "' attribmask='" + number +
          "'/><partition partitionid='" + number + "'/></r>"));
    }
  }
}

// What an attribute is made of is shortened where its use allows; never where it doesn't.
TEST_F(HostileXml, HasNumbersInPieces) {
  const std::vector<std::string> pieces{
      "&none;", "&zeros;", "&blanks;", "&minus;", "&digits;",           "&word;", "&long;", "0",
      "1",      "-",       " ",        "12345",   "0000000000000000000"};
  const std::string dtd = "<!DOCTYPE r [<!ENTITY none ''><!ENTITY zeros '" + std::string(70, '0') +
                          "'><!ENTITY blanks '" + std::string(70, ' ') +
                          "'><!ENTITY minus '-'><!ENTITY digits '" + std::string(19, '9') +
                          "'><!ENTITY word 'x1'><!ENTITY long '&blanks;&none;&zeros;7&zeros;'>]>";
  for (const std::string& first : pieces) {
    std::string elements;
    for (const std::string& second : pieces) {
      for (const std::string& third : pieces) {
        const std::string value = "='" + first + second + third + "'";
        elements += "<media name" + value + " mediaid" + value + "/>";
      }
    }
    SCOPED_TRACE(first);
    ASSERT_NO_FATAL_FAILURE(expectSame(dtd + "<r>" + elements + "</r>"));
  }
}

TEST_F(HostileXml, HasNumbersBehindManyKindsOfBlanks) {
  std::string blanks;
  for (int i = 0; i < 50; ++i) blanks += "&#9;&#10; ";
  expectSame("<!DOCTYPE r [<!ENTITY e ' '>]><r><media mediaid='&e;" + blanks + "7'/></r>");
}

TEST_F(HostileXml, HasNamesOfEveryLengthInPieces) {
  for (std::size_t length = 55; length < 70; ++length) {
    const std::string document =
        "<!DOCTYPE r [<!ENTITY e 'e'><!ENTITY l '" + std::string(length, 'l') +
        "'><!ENTITY m '&e;&l;'><!ATTLIST d name CDATA '" + std::string(length, 'd') +
        "' rectype CDATA '" + std::string(length, '0') +
        "9'>]><r name='&l;&e;'><m name='&e;&l;'/>"
        "<m name='&l;'/><m name='&l;&l;&l;'/><m name='&m;e'/><m name='&m;'/><m name='" +
        std::string(length - 1, 'x') + "&e;'/><d/><d rectype='1'/></r>";
    SCOPED_TRACE(length);
    ASSERT_NO_FATAL_FAILURE(expectSame(document));
  }
}

// Each of these would come to thousands of millions of bytes, or of steps.
// Parameter entities, each of which refers so many times to the one before.
std::string laughs(int levels, int times) {
  std::string document = "<!DOCTYPE r [<!ENTITY % a0 ''>";
  for (int level = 1; level <= levels; ++level) {
    document += "<!ENTITY % a" + std::to_string(level) + " '";
    for (int i = 0; i < times; ++i) document += "&#37;a" + std::to_string(level - 1) + ";";
    document += "'>";
  }
  return document + "%a" + std::to_string(levels) + ";]>\n<r><m name='n'/></r>";
}

TEST_F(HostileXml, RefersToItsParameterEntitiesSomeThousandTimes) {
  expectSame(laughs(6, 4));
  std::string references;
  for (int i = 0; i < 9000; ++i) references += "%a;";
  expectSame("<!DOCTYPE r [<!ENTITY % a ''>" + references + "]><r><m name='n'/></r>");
}

// The library itself would go round in circles.
TEST_F(HostileXml, RefersToItsParameterEntitiesTooOften) {
  const TempDir dir;
  const std::string path = dir / "menu.xml";
  const std::string document = laughs(8, 10);
  writeFile(path, document);
  const XmlReading reading = readXmlFile(path);
  EXPECT_EQ(reading.output, "Exception caught: Document not well-formed.\nFile " + path +
                                ", line 1, column " + std::to_string(document.find("]>\n") + 1) +
                                " (fatal):\nToo many references to parameter entities\n\n");
  EXPECT_EQ(reading.lines(), std::vector<std::string>{"0: 1 0 'root' 7 0 0"});
}

// What was wrong before is what is told.
TEST_F(HostileXml, RefersToItsParameterEntitiesTooOftenAfterAMistake) {
  std::string document = "<?xml version='1.0' standalone='yes'?>\n" + laughs(8, 10);
  document.insert(document.find("%a8;]"), "%none;\n");
  const TempDir dir;
  const std::string path = dir / "menu.xml";
  writeFile(path, document);
  const XmlReading reading = readXmlFile(path);
  EXPECT_EQ(reading.output, "Exception caught: Document not well-formed.\nFile " + path +
                                ", line 2, column " +
                                std::to_string(document.find("\n%a8;") - document.find('\n')) +
                                " (fatal):\nPEReference: %none; not found\n\n");
  EXPECT_EQ(reading.lines(), std::vector<std::string>{"0: 1 0 'root' 7 0 0"});
}

// That is fewer than 8000 times, or than eight times for each byte of the document so far.
TEST_F(HostileXml, RefersToItsParameterEntitiesAsOftenAsItMay) {
  const auto refusal = [](std::string_view references, std::size_t padding) {
    // Each level refers ten times to the one below: %a3; comes to 1111 references, %a2; to 111.
    std::string document = laughs(3, 10);
    document.insert(document.find("<!ENTITY"), std::string(padding, ' '));
    document.replace(document.find("%a3;"), 4, references);
    const TempDir dir;
    const std::string path = dir / "menu.xml";
    writeFile(path, document);
    return readXmlFile(path).output;
  };
  const std::string almost8000 = "%a3;%a3;%a3;%a3;%a3;%a3;%a3;%a2;%a2;";
  EXPECT_EQ(refusal(almost8000, 0), "");
  EXPECT_THAT(refusal(almost8000 + "%a0;", 0), ::testing::HasSubstr("Too many references"));

  // On some 1110 bytes.
  const std::string eightForEach = "%a3;%a3;%a3;%a3;%a3;%a3;%a3;%a3;";
  EXPECT_EQ(refusal(eightForEach, 780), "");
  EXPECT_THAT(refusal(eightForEach, 740), ::testing::HasSubstr("Too many references"));
}

TEST_F(HostileXml, SharesWhatItDeclares) {
  constexpr int kMany = 20000;
  constexpr std::size_t kLong = 1000000;
  const std::string manyReferences = repeated("&e;", kMany);
  const auto document = [](const std::string& dtd, const std::string& content) {
    return "<!DOCTYPE r [" + dtd + "]><r>" + content + "</r>";
  };
  const std::string longText = "<!ENTITY e '" + std::string(kLong, 'x') + "'>";
  EXPECT_EQ(readXml(document(longText, "<m name='" + manyReferences + "'/>")).lines().back(),
            "1: 1 0 '" + std::string(62, 'x') + "' 7 0 0");
  EXPECT_EQ(readXml(document(longText, repeated("<m name='&e;&e;'/>", kMany))).lines().size(),
            kMany + 1U);

  const std::string longNumber = "<!ENTITY e '" + std::string(kLong, '0') + "'>";
  EXPECT_EQ(readXml(document(longNumber, repeated("<m rectype='&e;9'/>", kMany))).lines().back(),
            "1: 1 0 '' 9 0 0");
  EXPECT_EQ(readXml(document("<!ATTLIST m rectype CDATA '" + std::string(kLong, '0') + "8'>",
                             repeated("<m/>", kMany)))
                .lines()
                .back(),
            "1: 1 0 '' 8 0 0");

  const std::string nothing = "<!ENTITY e ''><!ENTITY f '" + manyReferences + "'>";
  EXPECT_EQ(readXml(document(nothing, repeated("<m name='&f;x&f;'/>", kMany))).lines().back(),
            "1: 1 0 'x' 7 0 0");
}

TEST_F(HostileXml, NestsAsDeepAsTheLibraryAllowsAndNoDeeper) {
  const int deepest = static_cast<int>(xmlParserMaxDepth) + 1;
  ASSERT_EQ(deepest, 257);
  const XmlReading read = readXml(nestedDocument(deepest));
  EXPECT_EQ(read.output, "");
  EXPECT_EQ(read.lines().size(), 257U);
  const XmlReading refused = readXml(nestedDocument(deepest + 1));
  EXPECT_NE(refused.output.find("Excessive depth in document: 256"), std::string::npos)
      << refused.output;
  EXPECT_EQ(refused.lines().size(), 1U);
}

}  // namespace
}  // namespace Orvane::test
