#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inventory_image.h"
#include "skein/decompile.h"
#include "verb_runner.h"
#include "written_inventory.h"

namespace Orvane {
namespace {

std::vector<std::uint8_t> bytesOf(const InventoryImage& image) {
  return {image.bytes().begin(), image.bytes().end()};
}

// What is lost, as "rule" or "rule@path", space-separated.
std::string lossesIn(Bytes bytes) {
  const VerbResult result = decompileOf(bytes);
  std::string losses;
  std::size_t begin = 0;
  while (begin < result.messages.size()) {
    const std::size_t end = result.messages.find('\n', begin);
    const std::string line = result.messages.substr(begin, end - begin);
    begin = end + 1;
    if (!losses.empty()) losses += ' ';
    const std::size_t rule = line.rfind('[');
    losses += line.substr(rule + 1, line.size() - rule - 2);
    const std::size_t path = line.find(" (/");
    if (path != std::string::npos) {
      losses += '@';
      losses += line.substr(path + 2, line.find(')', path) - path - 2);
    }
  }
  EXPECT_EQ(result.status, losses.empty() ? 0 : 1);
  return losses;
}

// The bytes come back if nothing is said to be lost, and only then.
void expectExact(const InventoryImage& image, Layout layout) {
  const VerbResult result = decompileOf(image.bytes());
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(compiled(result.out, layout), bytesOf(image)) << result.out;
}

void expectLoss(const InventoryImage& image, Layout layout, const std::string& losses) {
  EXPECT_EQ(lossesIn(image.bytes()), losses);
  EXPECT_NE(compiled(decompileOf(image.bytes()).out, layout), bytesOf(image));
}

class DecompileOfLayout : public testing::TestWithParam<Layout> {};

INSTANTIATE_TEST_SUITE_P(Layouts, DecompileOfLayout,
                         testing::Values(Layout::kOneTable, Layout::kTwoTable));

TEST_P(DecompileOfLayout, WritesAMenuTree) {
  Sketch partition = menu("P");
  partition.attribMask = 9;
  partition.recType = 0;
  Sketch track = media("a<&\">\t", 5, 2);
  track.attribMask = 3;
  const InventoryImage image(GetParam(), menu("Home", {menu("A", {track}), partition}));
  const VerbResult result = decompileOf(image.bytes());
  EXPECT_EQ(result.out,
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<inventory name=\"Home\">\n"
            "  <menu name=\"A\">\n"
            "    <media name=\"a&lt;&amp;&quot;&gt;&#9;\" rectype=\"0\" mediaid=\"5\" rating=\"2\""
            " attribmask=\"3\"/>\n"
            "  </menu>\n"
            "  <partition name=\"P\" rectype=\"0\" partitionid=\"9\"/>\n"
            "</inventory>\n");
  EXPECT_EQ(result.status, 0);
  expectExact(image, GetParam());
}

TEST_P(DecompileOfLayout, KeepsNamesOfEveryLength) {
  for (std::size_t length = 0; length <= 64; ++length) {
    const std::string name(length, 'n');
    expectExact(InventoryImage(GetParam(), menu(name, {media(name, 1), menu(name)})), GetParam());
  }
}

TEST_P(DecompileOfLayout, KeepsChildCountsOfLeaves) {
  expectExact(InventoryImage(GetParam(), menu("R", {media("x", 1, 0, {menu("a"), menu("b")})})),
              GetParam());
  InventoryImage many(GetParam(), menu("R", {media("x", 1)}));
  expectExact(many.childCount(1, 5000), GetParam());
  expectLoss(many.childCount(1, 1000001), GetParam(), "child-count@/x");
  expectLoss(many.childCount(1, 0xFFFFFFFF), GetParam(), "child-count@/x");
}

TEST_P(DecompileOfLayout, KeepsTheLargestNumbers) {
  Sketch track = media("x", 0xFFFFFFFF, 255);
  track.attribMask = 0xFFFF;
  track.recType = 255;
  expectExact(InventoryImage(GetParam(), menu("R", {track})), GetParam());
}

TEST_P(DecompileOfLayout, NamesWhatXmlCannotSay) {
  Sketch artist = menu("Anna");
  artist.mediaId = 5;
  expectLoss(InventoryImage(GetParam(), menu("R", {menu("Artists", {artist})})), GetParam(),
             "menu-id@/Artists/Anna");
  Sketch rated = menu("M");
  rated.rating = 2;
  expectLoss(InventoryImage(GetParam(), menu("R", {rated})), GetParam(), "menu-rating@/M");
  expectLoss(InventoryImage(GetParam(), media("R", 0)), GetParam(), "root-leaf@/ root-field@/");
  Sketch root = menu("R");
  root.mediaId = 1;
  root.rating = 2;
  root.attribMask = 3;
  root.recType = 4;
  expectLoss(InventoryImage(GetParam(), root), GetParam(),
             "root-field@/ root-field@/ root-field@/ root-field@/");
}

TEST_P(DecompileOfLayout, NamesWhatIsNoXmlText) {
  for (const char* bad : {"\x01", "a\x1F", "\xFF", "\xED\xA0\x80", "\xEF\xBF\xBF"}) {
    const InventoryImage image(GetParam(), menu("R", {menu(bad)}));
    EXPECT_EQ(lossesIn(image.bytes()).substr(0, 9), "xml-name@");
  }
  for (const char* good : {"\t\n\r", "\x7F", "\xC2\x80", "\xF0\x9F\x8E\xB5", " a  b "}) {
    expectExact(InventoryImage(GetParam(), menu(good, {media(good, 1)})), GetParam());
  }
  InventoryImage tail(GetParam(), menu("R"));
  tail.name(0, std::string_view("R\0x", 3));
  EXPECT_EQ(lossesIn(tail.bytes()), "name-tail@/");
}

TEST_P(DecompileOfLayout, KnowsHowDeepXmlMayBe) {
  Sketch tree = menu("innermost");
  for (int i = 0; i < 256; ++i) tree = menu(std::to_string(i), {tree});
  expectExact(InventoryImage(GetParam(), tree), GetParam());
  Sketch leaf = media("innermost", 1);
  for (int i = 0; i < 256; ++i) leaf = menu(std::to_string(i), {leaf});
  expectExact(InventoryImage(GetParam(), leaf), GetParam());
  Sketch filled = media("innermost", 1, 0, {menu("")});
  for (int i = 0; i < 256; ++i) filled = menu(std::to_string(i), {filled});
  EXPECT_EQ(lossesIn(InventoryImage(GetParam(), filled).bytes()).substr(0, 8), "too-deep");
  const std::string losses = lossesIn(InventoryImage(GetParam(), menu("m", {tree})).bytes());
  EXPECT_EQ(losses.substr(0, 8), "too-deep");
}

TEST_P(DecompileOfLayout, NamesRecordsThatNoWriterWouldPutThere) {
  InventoryImage image(GetParam(), menu("R", {menu("A", {menu("x")}), menu("B", {menu("y")})}));
  image.firstChild(1, 4).firstChild(2, 3);
  expectLoss(image, GetParam(), "not-canonical@/A");
  InventoryImage childless(GetParam(), sampleTree());
  expectLoss(childless.firstChild(3, 0), GetParam(), "not-canonical@/Empty");
}

TEST_P(DecompileOfLayout, ReportsDamageAndWritesTheRest) {
  InventoryImage image(GetParam(), sampleTree());
  image.firstChild(1, 0);
  const VerbResult result = decompileOf(image.bytes());
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.messages.find("[cycle]"), std::string::npos);
  EXPECT_NE(result.out.find("<media name=\"Song C\""), std::string::npos);
}

TEST_P(DecompileOfLayout, NamesRatingsOfADamagedFileToo) {
  Sketch rated = menu("M");
  rated.rating = 2;
  InventoryImage image(GetParam(), menu("R", {rated}));
  EXPECT_EQ(lossesIn(image.byte(1, 9).bytes()), "header-constant menu-rating@/M");
}

TEST(Decompile, WritesAnEmptyTreeForNoRecords) {
  InventoryImage none(Layout::kOneTable, menu("R"));
  none.number(24, 0).cutTo(32);
  EXPECT_EQ(decompileOf(none.bytes()).out,
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<inventory/>\n");
}

TEST(Decompile, KeepsDisplacedMenus) {
  const Sketch tree = menu("R", {menu("Playlists", {media("x", 1), media("y", 2)}), menu("A"),
                                 menu("Playlists", {media("z", 3)}), menu("B", {menu("C")})});
  const auto sharing =
      compiled(decompileOf(InventoryImage(Layout::kOneTable, tree).bytes()).out, Layout::kTwoTable);
  const VerbResult again = decompileOf(sharing);
  EXPECT_EQ(again.messages, "");
  EXPECT_NE(again.out.find("<menu name=\"Playlists\">\n    <menu/>\n    <menu/>\n  </menu>"),
            std::string::npos);
  EXPECT_EQ(compiled(again.out, Layout::kTwoTable), sharing);
}

TEST(Decompile, KeepsDisplacedLeaves) {
  const std::string xml =
      "<r><media name=\"Playlists\" mediaid=\"4\" rating=\"2\"><i/></media>"
      "<menu name=\"Playlists\"><media name=\"x\"/></menu></r>";
  const auto bytes = compiled(xml, Layout::kTwoTable);
  const VerbResult result = decompileOf(bytes);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(compiled(result.out, Layout::kTwoTable), bytes) << result.out;
}

// A media leaf of that name and type is linked like one only as long as no such menu follows.
TEST(Decompile, NamesDisplacedLeavesThatNoWriterWouldMake) {
  Sketch leaf = media("Playlists", 4);
  leaf.recType = 7;
  InventoryImage image(Layout::kTwoTable, menu("R", {leaf, menu("A"), menu("Playlists")}));
  expectExact(image, Layout::kTwoTable);
  image.firstChild(1, kNoChildren);
  expectLoss(image, Layout::kTwoTable, "not-canonical@/Playlists");
  expectExact(InventoryImage(Layout::kTwoTable, menu("R", {menu("A"), leaf})), Layout::kTwoTable);
}

// Contents that are stored all the same can only be carried by a menu, which has no id.
TEST(Decompile, NamesTheIdOfAPlaylistsMenuWithContents) {
  Sketch first = menu("Playlists");
  first.mediaId = 5;
  InventoryImage image(Layout::kTwoTable,
                       menu("R", {first, menu("A", {media("x", 1)}), menu("Playlists")}));
  image.firstChild(1, 4).childCount(1, 1).childCount(2, 0).firstChild(3, 4);
  expectLoss(image, Layout::kTwoTable, "menu-id@/Playlists not-canonical@/Playlists");
}

TEST(Decompile, NamesTheFirstDataRecordThatAnotherOneRepeats) {
  std::vector<Sketch> songs;
  for (int i = 0; i < 40; ++i) songs.push_back(media(i % 2 == 0 ? "odd" : "even", 7));
  const InventoryImage image(Layout::kTwoTable, menu("R", songs));
  EXPECT_NE(
      decompileOf(image.bytes())
          .messages.find("record 4 (/even): error: a writer would let it share data record 2 ["),
      std::string::npos);
}

TEST(Decompile, NamesARecordThatSharesTheRootsItem) {
  InventoryImage image(Layout::kTwoTable, menu("R", {menu("A"), menu("B")}));
  image.dataIndex(1, 0).dataIndex(2, 1).number(40, 2).cutTo(image.size() - 72);
  expectLoss(image, Layout::kTwoTable, "not-canonical@/R");
}

TEST(Decompile, NamesTheFirstRecordThatStandsElsewhere) {
  InventoryImage image(Layout::kTwoTable, menu("R", {menu("A"), menu("B"), menu("C"), menu("D")}));
  image.dataIndex(1, 2).dataIndex(2, 1).dataIndex(3, 4).dataIndex(4, 3);
  EXPECT_NE(decompileOf(image.bytes())
                .messages.find("record 1 (/B): error: a writer would give it data record 1 ["),
            std::string::npos);
}

TEST(Decompile, KeepsWhatSharingGaveToAMenu) {
  const std::string xml =
      "<r><media name=\"A\" rating=\"3\" rectype=\"1\"/><menu name=\"A\"><media name=\"x\"/></menu>"
      "</r>";
  const auto bytes = compiled(xml, Layout::kTwoTable);
  const VerbResult result = decompileOf(bytes);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(compiled(result.out, Layout::kTwoTable), bytes) << result.out;
}

TEST(Decompile, NamesDataRecordsThatNoWriterWouldMake) {
  InventoryImage twins(Layout::kTwoTable, menu("R", {media("x", 1), media("x", 1)}));
  expectLoss(twins, Layout::kTwoTable, "not-canonical@/x");
  InventoryImage root(Layout::kTwoTable, menu("R", {menu("A"), menu("R")}));
  root.dataIndex(1, 2).dataIndex(2, 1);
  expectLoss(root, Layout::kTwoTable, "not-canonical@/R");
}

}  // namespace
}  // namespace Orvane
