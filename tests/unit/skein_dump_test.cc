#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inventory_image.h"
#include "skein/dump.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

std::string dumpText(const InventoryImage& image, const DumpOptions& options = {}) {
  const VerbResult result = dumpOf(image.bytes(), Format::kText, options);
  EXPECT_EQ(result.status, 0) << result.messages;
  return result.out.substr(result.out.find('\n') + 1);
}

TEST(Dump, ShowsTheTree) {
  Sketch artist = menu("Anna", {media("Song \"A\"", 1, 3)});
  artist.mediaId = 44;
  artist.recType = 4;
  Sketch odd = menu("Odd");
  odd.recType = 99;
  odd.rating = 7;
  odd.attribMask = 0x0102;
  const InventoryImage image(Layout::kTwoTable, menu("Home", {artist, odd}));
  const VerbResult result = dumpOf(image.bytes());
  EXPECT_EQ(result.out,
            "a.inv: two-table inventory, 384 bytes, 4 records, 4 data records\n"
            "menu \"Home\" #0, 2 children\n"
            "  artist \"Anna\" #1, id 44, 1 child\n"
            "    media \"Song \\\"A\\\"\" #3, id 1, rating 3 ***\n"
            "  menu \"Odd\" #2, type 99, rating 7, attributes 0x0102, 0 children\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.messages, "");
}

TEST(Dump, ShowsWhatIsNotStored) {
  const Sketch tree = menu("R", {menu("Playlists", {media("a", 1)}), menu("Playlists"),
                                 media("b", 2, 0, {menu(""), menu("")})});
  EXPECT_EQ(dumpText(InventoryImage(Layout::kTwoTable, tree)),
            "menu \"R\" #0, 3 children\n"
            "  menu \"Playlists\" #1, 1 child not stored\n"
            "  menu \"Playlists\" #2, 0 children\n"
            "  media \"b\" #3, id 2, 2 children not stored\n");
}

TEST(Dump, EscapesNames) {
  EXPECT_EQ(dumpText(InventoryImage(Layout::kOneTable, menu("\x1B[31m\xC2\x9B\n"))),
            "menu \"\\x1B[31m\\xC2\\x9B\\n\" #0, 0 children\n");
}

TEST(Dump, ShowsAPartOfIt) {
  const InventoryImage image(Layout::kOneTable, sampleTree());
  DumpOptions path;
  path.path = {"Artists", "Anna"};
  EXPECT_EQ(dumpText(image, path),
            "menu \"Anna\" #4, 2 children\n"
            "  media \"Song A\" #5, id 1\n"
            "  media \"Song B\" #6, id 2\n");
  DumpOptions depth;
  depth.depth = 1;
  EXPECT_EQ(dumpText(image, depth),
            "menu \"Home\" #0, 3 children\n"
            "  menu \"Artists\" #1, 1 child\n"
            "  menu \"Songs\" #2, 3 children\n"
            "  menu \"Empty\" #3, 0 children\n");
  DumpOptions record;
  record.record = 4;
  record.depth = 0;
  EXPECT_EQ(dumpText(image, record), "menu \"Anna\" #4, 2 children\n");
  DumpOptions below;
  below.record = 2;
  below.path = {"Song C"};
  EXPECT_EQ(dumpText(image, below), "media \"Song C\" #9, id 3\n");
}

TEST(Dump, ShowsEveryRecordOfAPath) {
  const InventoryImage image(
      Layout::kOneTable, menu("R", {menu("A", {menu("x")}), menu("B"), menu("A", {menu("x")})}));
  DumpOptions options;
  options.path = {"A", "x"};
  EXPECT_EQ(dumpText(image, options),
            "menu \"x\" #4, 0 children\n"
            "menu \"x\" #5, 0 children\n");
}

TEST(Dump, SaysWhatIsMissing) {
  const InventoryImage image(Layout::kOneTable, sampleTree());
  DumpOptions options;
  options.path = {"Artists", "Bob", "X"};
  VerbResult result = dumpOf(image.bytes(), Format::kText, options);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.messages, "skein: a.inv: error: no \"Bob\" in /Artists\n");
  options.record = 1;
  options.path = {"Bob"};
  EXPECT_EQ(dumpOf(image.bytes(), Format::kText, options).messages,
            "skein: a.inv: error: no \"Bob\" in record 1\n");
  options.path = {"Anna", "Song D"};
  EXPECT_EQ(dumpOf(image.bytes(), Format::kText, options).messages,
            "skein: a.inv: error: no \"Song D\" in /Anna below record 1\n");
  options.record = 0;
  EXPECT_EQ(dumpOf(image.bytes(), Format::kText, options).messages,
            "skein: a.inv: error: no \"Anna\" in /\n");
  options = {};
  options.record = 10;
  result = dumpOf(image.bytes(), Format::kText, options);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.messages, "skein: a.inv: error: no record 10: the file has 10\n");
}

TEST(Dump, ShowsTheGoodPartAndTheDamageInPlace) {
  InventoryImage image(Layout::kTwoTable, sampleTree());
  image.firstChild(4, 1).dataIndex(8, 77);
  const VerbResult result = dumpOf(image.bytes());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out,
            "a.inv: two-table inventory, 888 bytes, 10 records, 10 data records\n"
            "menu \"Home\" #0, 3 children\n"
            "  menu \"Artists\" #1, 1 child\n"
            "    menu \"Anna\" #4, 2 children\n"
            "      ! error: cycle: record 1 is among its children and also above it [cycle]\n"
            "  menu \"Songs\" #2, 3 children\n"
            "    media \"Song A\" #7, id 1\n"
            "    media \"\" #8\n"
            "      ! error: data index 77 is outside the table of 10 data records [data-index]\n"
            "    media \"Song C\" #9, id 3\n"
            "  menu \"Empty\" #3, 0 children\n"
            "! error: records 5 to 6 are not reachable from the root [unreachable-record]\n"
            "! error: data records 5 to 6 are not used by any record [unused-data]\n"
            "! error: data record 8 is not used by any record [unused-data]\n");
  EXPECT_NE(result.messages.find("run: skein check"), std::string::npos);
}

TEST(Dump, WritesAnObjectForEachRecord) {
  const InventoryImage image(Layout::kTwoTable, menu("R", {media("a\xFF", 5, 1)}));
  EXPECT_EQ(
      dumpOf(image.bytes(), Format::kJsonLines).out,
      "{\"schema\":\"skein-dump/1\",\"type\":\"file\",\"file\":\"a.inv\",\"layout\":"
      "\"two-table\",\"size\":216,\"records\":2,\"dataRecords\":2}\n"
      "{\"type\":\"node\",\"record\":0,\"parent\":null,\"depth\":0,\"kind\":\"menu\",\"name\":"
      "\"R\",\"mediaId\":0,\"recType\":7,\"rating\":0,\"attribMask\":0,\"dataRecord\":0,"
      "\"children\":1,\"stored\":true}\n"
      "{\"type\":\"node\",\"record\":1,\"parent\":0,\"depth\":1,\"kind\":\"media\",\"name\":"
      "\"a\\\\xFF\",\"bytes\":\"61ff\",\"mediaId\":5,\"recType\":0,\"rating\":1,"
      "\"attribMask\":0,\"dataRecord\":1,\"children\":0,\"stored\":false}\n"
      "{\"type\":\"finding\",\"rule\":\"name-utf8\",\"severity\":\"warning\",\"offset\":149,"
      "\"record\":1,\"dataRecord\":1,\"path\":\"/a\\\\xFF\",\"message\":\"the name is not "
      "valid UTF-8, from byte 1 on\"}\n"
      "{\"type\":\"end\",\"status\":0}\n");
}

}  // namespace
}  // namespace Orvane
