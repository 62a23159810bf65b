// Reads tricky documents twice, once with the reader and once with the plain rendering of the
// mapping over libxml++'s own nodes, which decides all that the format leaves to that library.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "plain_xml_reading.h"
#include "test_support.h"
#include "xml_reading.h"

namespace Orvane {
namespace {

using test::nestedDocument;
using test::repeated;

struct Document {
  const char* title;
  std::string text;
};

void PrintTo(const Document& document, std::ostream* out) {
  *out << document.title;
}

std::string utf16(const std::string& ascii, bool bigEndian) {
  std::string text = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : ascii) text += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  return text;
}

const std::string kTwoPrefixes = "xmlns:p='urn:p' xmlns:q='urn:q'";

const Document kDocuments[] = {
    {"PlainMenu", "<r name='R'><m name='A'><media name='x' mediaid='5' rating='2'/></m></r>"},
    {"EntityInContent", "<!DOCTYPE r [<!ENTITY e 'text'>]><r><m>a&e;b</m>&e;</r>"},
    {"BlankEntity", "<!DOCTYPE r [<!ENTITY e ' '>]><r><m>&e;</m></r>"},
    {"EmptyEntity", "<!DOCTYPE r [<!ENTITY e ''>]><r><m>&e;</m><m name='&e;'/></r>"},
    {"EntityWithElements",
     "<!DOCTYPE r [<!ENTITY e \"<media name='in' mediaid='3'/>t\">]><r><m>&e;&e;</m>&e;</r>"},
    {"NestedEntities",
     "<!DOCTYPE r [<!ENTITY a 'A'><!ENTITY b '&a;&a;'><!ENTITY c '<m>&b;</m>&b;'>]>"
     "<r><m>&c;&b;</m><m>&a;</m></r>"},
    {"EntityBeforeTheRestOfTheDtd",
     "<!DOCTYPE r [<!ENTITY a 'A'><!-- c --><?pi x?><!ELEMENT r ANY><!ATTLIST r z CDATA #IMPLIED>"
     "<!NOTATION n SYSTEM 'n'><!ENTITY % p 'x'><!ENTITY b 'B'>]><r><m>&a;</m><m>&b;</m></r>"},
    {"UnparsedAndExternalEntities",
     "<!DOCTYPE r [<!NOTATION n SYSTEM 'n'><!ENTITY u SYSTEM 'nowhere.gif' NDATA n>"
     "<!ENTITY x SYSTEM 'nowhere.xml'>]><r><m>&x;</m></r>"},
    {"UndeclaredEntityWithExternalDtd",
     "<!DOCTYPE r SYSTEM 'nowhere.dtd'><r name='a&u;b'><m name='&u;' rectype='&u;1'>&u;</m></r>"},
    {"EntitiesInAttributes",
     "<!DOCTYPE r [<!ENTITY n '4'><!ENTITY nn '&n;&n;'><!ENTITY t 'x &amp; y'>]>"
     "<r name='&t;'><media name='a&t;b&nn;' mediaid='&n;&nn;' rating='1&n;' "
     "attribmask='&nn;x'/></r>"},
    {"EntityUsedInContentAndThenInAttribute",
     "<!DOCTYPE r [<!ENTITY a 'A'><!ENTITY b '&a;B'>]><r><m>&b;</m><m name='&b;&a;&b;'/></r>"},
    {"EntityUsedInAttributeAndThenInContent",
     "<!DOCTYPE r [<!ENTITY a 'A'><!ENTITY b '&a;B'>]><r><m name='&b;&a;&b;'/><m>&b;</m></r>"},
    {"ManyReferencesInAnAttribute", "<!DOCTYPE r [<!ENTITY e 'é'>]><r name='" +
                                        repeated("&e;", 40) + "'><m name='" + repeated("&e;x", 15) +
                                        "'/></r>"},
    {"CharacterReferences",
     "<r name='&#65;&#x42;&lt;&gt;&quot;&apos;&amp;'><media name='&#233;&#x20AC;&#128512;' "
     "mediaid='&#52;2'/><m>&lt;</m><m>&#32;</m><m>&#160;</m></r>"},
    {"AttributeNormalisation", "<r name=' a\tb\nc '><media name='&#9;&#10;' mediaid='\n7'/></r>"},
    {"DefaultAttributes",
     "<!DOCTYPE r [<!ATTLIST r name CDATA 'Default root'><!ATTLIST m name CDATA 'Default' "
     "rectype CDATA '3'><!ATTLIST media mediaid CDATA #FIXED '8' rating CDATA #IMPLIED name CDATA "
     "#REQUIRED>]><r><m/><m name='given'/><m rectype='x'/><media/><media mediaid='8'/></r>"},
    {"DefaultAttributeWithEntity",
     "<!DOCTYPE r [<!ENTITY e 'E'><!ATTLIST m name CDATA 'a&e;b' rectype CDATA '&#52;'>]>"
     "<r><m/><m name='&e;'/></r>"},
    {"DefaultAttributeOfAPrefix",
     "<!DOCTYPE r [<!ATTLIST m p:name CDATA 'prefixed'><!ATTLIST p:m name CDATA 'of prefixed'>]>"
     "<r xmlns:p='urn:p'><m/><p:m/></r>"},
    {"DefaultNamespaceDeclaration",
     "<!DOCTYPE r [<!ATTLIST r xmlns CDATA #FIXED 'urn:d'><!ATTLIST media mediaid CDATA '1'>]>"
     "<r name='N'><media/><media xmlns='' mediaid='2'/></r>"},
    {"TokenisedAttributes",
     "<!DOCTYPE r [<!ATTLIST m name NMTOKENS #IMPLIED><!ATTLIST media name ID #IMPLIED>]>"
     "<r><m name='  a   b  '/><media name=' id '/></r>"},
    {"PrefixedTags", "<p:r " + kTwoPrefixes +
                         " name='R'><p:media mediaid='1'/><q:partition partitionid='2'/>"
                         "<p:m name='x'/></p:r>"},
    {"PrefixedAttributes", "<r " + kTwoPrefixes +
                               " p:name='P'><m p:name='P'/><m p:name='P' name='N'/>"
                               "<m name='N' p:name='P'/><media p:mediaid='1' q:mediaid='2'/></r>"},
    {"DefaultNamespace", "<r xmlns='urn:d' name='R'><media name='m' mediaid='1'/></r>"},
    {"NamespacesDeclaredInside",
     "<r><a xmlns:p='urn:p'><b name='b'><p:m name='x &amp; y' p:name='z'/>"
     "<p:m p:name='z &amp; x'/><p:m xml:id='i' p:name='z'/></b></a>"
     "<a xmlns='urn:d'><b name='b'><m name='&amp;'/></b></a><m name='&amp;'/></r>"},
    {"XmlPrefix", "<r xml:name='X'><m xml:name='X' xml:space='preserve'> </m></r>"},
    {"UndeclaredPrefix", "<r><p:m name='x'/></r>"},
    {"ColonsInNames", "<r><:m name='x'/></r>"},
    {"CdataSections",
     "<r><![CDATA[x]]><m><![CDATA[a]]><![CDATA[b]]></m><m>t<![CDATA[]]>t</m><m><![CDATA[ ]]></m>"
     "<m><![CDATA[]]></m></r>"},
    {"CommentsAndInstructions",
     "<?pi before?><!-- before --><r><!----><?pi?><m><!-- a --><!----><?pi?><?pi data?></m></r>"
     "<!-- after --><?pi after?>"},
    {"TextBetween", "<r>x<m>a<m/>b<m/> <m/>\n</m>y</r>"},
    {"LongText",
     "<r><m>" + std::string(100000, 'x') + "</m><m>" + std::string(100000, ' ') + "</m></r>"},
    {"ContentAmongElements",
     "<r>a<m>b<m>c<m/>d<!-- e --></m>f<?g?><m name='&amp;'>h<m/>i</m>j<![CDATA[k]]>l</m>m</r>"},
    {"Ids",
     "<r xml:id='a'><m xml:id='b'>x<m xml:id='c' name='n'>t<m/>u</m><!-- c --></m>"
     "<m name='plain' rectype='3'/>y<m xml:id='d'/></r><!-- behind -->"},
    {"IdTwice", "<r><m xml:id='a' name='x'/><m><m xml:id='a'/></m></r>"},
    {"IdOfTheRootOnceMore", "<r xml:id='a'><m xml:id='a'/></r>"},
    {"IdThatIsNoName", "<r><m xml:id='1'/></r>"},
    {"IdsThatAreNone",
     "<r xmlns:p='urn:p' xml:name='a' id='a' p:id='a'><m id='a'/><m p:id='a' name='n'/></r>"},
    {"AmpersandsInAttributes",
     "<r name='a&amp;b'><m name='&#38;lt;'>x<m name='&amp;'/>y</m>"
     "<media name='c&#x26;' mediaid='&amp;1' rating='2&amp;3' attribmask='4' rectype='5'/></r>"},
    {"MediaWithChildren", "<r><media name='a'>t<media name='b'/><m><media/></m></media></r>"},
    {"Numbers",
     "<r><media mediaid=' 42xyz' rating='-1' attribmask='99999999999999999999' rectype='0x1F'/>"
     "<media mediaid='' rating='+3' attribmask='-99999999999999999999' rectype='abc'/></r>"},
    {"LongNames", "<r name='" + std::string(65, 'r') + "'><m name='" + std::string(64, 'a') +
                      "'/><m name='" + std::string(65, 'b') + "'/><m name='" + repeated("é", 33) +
                      "'/></r>"},
    {"Utf16BigEndian", utf16("<r name='wide'><media mediaid='5'>x</media></r>", true)},
    {"Utf16LittleEndian", utf16("<r name='wide'><media mediaid='5'>x</media></r>", false)},
    {"Latin1",
     "<?xml version='1.0' encoding='ISO-8859-1'?><r name='\xE9'><m name='\xFF'>\xA0</m></r>"},
    {"Utf8WithMark", "\xEF\xBB\xBF<r name='mark'/>"},
    {"UnknownEncoding", "<?xml version='1.0' encoding='none-such'?><r name='x'/>"},
    {"Version11", "<?xml version='1.1'?><r name='x'><m>&#1;</m></r>"},
    {"XInclude",
     "<r xmlns:xi='http://www.w3.org/2001/XInclude'><m><xi:include href='nowhere'/></m></r>"},
    {"Deep", nestedDocument(250)},
    {"DeepThroughEntities",
     "<!DOCTYPE r [<!ENTITY a '<m><m><m>x</m></m></m>'><!ENTITY b "
     "'<m>&a;<m>&a;</m></m>'>]><r><m>&b;</m></r>"},
    {"Wide", "<r>" + repeated("<m name='w'>x</m>", 2000) + "</r>"},
    {"EntityLoop", "<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r><m>&a;</m></r>"},
    {"EntityLoopThroughElements",
     "<!DOCTYPE r [<!ENTITY a '<m>&b;</m>'><!ENTITY b '<m>&a;</m>'>]><r><m>&a;</m></r>"},
    {"UnusedEntityLoop", "<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r><m>x</m></r>"},
    {"EntityReferringToItself", "<!DOCTYPE r [<!ENTITY a '<m>&a;</m>'>]><r><m>&a;</m></r>"},
    {"LoopOfDefaultAttributes",
     "<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'><!ATTLIST m name CDATA '&a;'>]><r><m/></r>"},
    {"LaterEntityReferringBack",
     "<!DOCTYPE r [<!ENTITY b '<m>&a;</m>'><!ENTITY a 'x'>]><r><m>&a;&b;</m><m>&b;</m></r>"},
    {"ExponentialEntities",
     "<!DOCTYPE r [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;'>"
     "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;'><!ENTITY d '&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;'>"
     "]><r><m>&d;</m></r>"},
    {"Unbalanced", "<r><m></r>"},
    {"Truncated", "<r name='x'><m name='y'/><m"},
    {"Empty", ""},
    {"NoElement", "<!-- nothing -->"},
    {"BadBytes", "<r name='\xFF'/>"},
    {"ZeroByte", std::string("<r name='a\0b'/>", 15)},
    {"DuplicateAttribute", "<r name='a' name='b'/>"},
    {"WarningOnly", "<r xmlns='not an absolute uri'><m xml:lang='' name='x'/></r>"},
};

class XmlComparison : public ::testing::TestWithParam<Document> {};

TEST_P(XmlComparison, ReaderAgreesWithThePlainRendering) {
  const test::TempDir dir;
  const std::string path = dir / "menu.xml";
  test::writeFile(path, GetParam().text);

  ::testing::internal::CaptureStderr();
  const test::PlainXmlReading expected(path);
  ::testing::internal::GetCapturedStderr();

  ::testing::internal::CaptureStderr();
  const test::XmlReading actual = test::readXmlFile(path);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(actual.output, expected.output);
  EXPECT_EQ(actual.lines(), expected.lines());
}

INSTANTIATE_TEST_SUITE_P(Documents, XmlComparison, ::testing::ValuesIn(kDocuments),
                         [](const auto& parameter) { return parameter.param.title; });

}  // namespace
}  // namespace Orvane
