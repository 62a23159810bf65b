#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inventory_image.h"
#include "reader/annotation.h"
#include "skein/annotate.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Whether the fields follow each other from the start of a file.
class ConsecutiveFields : public AnnotationSink {
 public:
  void section(const std::string& /*title*/) override {}
  void field(const AnnotatedField& field) override {
    EXPECT_EQ(field.offset, end_) << field.name;
    EXPECT_GT(field.size, 0U) << field.name;
    end_ += field.size;
  }
  std::uint64_t end() const { return end_; }

 private:
  std::uint64_t end_ = 0;
};

TEST(Annotate, HasNoFieldsWithoutBytes) {
  for (const Layout layout : {Layout::kOneTable, Layout::kTwoTable}) {
    for (const std::size_t length : {0U, 1U, 63U, 64U}) {
      InventoryImage image(layout, menu(std::string(length, 'n'), {media("", 1)}));
      image.name(1, std::string_view("\0tail", 5));
      ConsecutiveFields fields;
      const TreeIndex index(viewOf(image));
      Annotation(index, fields).run();
      EXPECT_EQ(fields.end(), image.size());
    }
  }
}

TEST(Annotate, ExplainsEveryFieldOfAOneTableFile) {
  Sketch root = menu("R");
  root.mediaId = 258;
  root.rating = 1;
  root.attribMask = 0xABCD;
  const VerbResult result = annotateOf(InventoryImage(Layout::kOneTable, root).bytes());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(
      result.out,
      "file header\n"
      "00000000  00                       zero             0\n"
      "00000001  01                       version          1\n"
      "00000002  00 00                    reserved         0\n"
      "00000004  00 00 00 00              reserved         0\n"
      "00000008  01 00 00 00              tables           1\n"
      "0000000c  10 00 00 00              headerSize       16\n"
      "table descriptor 0\n"
      "00000010  03                       kind             3 combined table\n"
      "00000011  01                       version          1\n"
      "00000012  00 00                    reserved         0\n"
      "00000014  20 00 00 00              offset           32\n"
      "00000018  01 00 00 00              count            1\n"
      "0000001c  50 00 00 00              recordSize       80\n"
      "node record 0 (/)\n"
      "00000020  01 00 00 00              firstChildIndex  1, of no meaning without children\n"
      "00000024  00 00 00 00              childCount       0\n"
      "00000028  02 01 00 00              mediaId          258\n"
      "0000002c  52                       name             \"R\"\n"
      "0000002d  00 ...                   name fill        63 zero bytes\n"
      "0000006c  07                       recType          7\n"
      "0000006d  01                       rating           1\n"
      "0000006e  cd ab                    attribMask       0xabcd\n");
}

TEST(Annotate, ShowsWhatIndexesPointTo) {
  const Sketch tree =
      menu("R", {menu("Playlists", {media("a", 1)}), menu("Playlists", {media("ten letters", 2)})});
  const std::string text = annotateOf(InventoryImage(Layout::kTwoTable, tree).bytes()).out;
  EXPECT_TRUE(holds(text, "firstChildIndex  1 -> record 1 \"Playlists\"\n")) << text;
  EXPECT_TRUE(holds(text,
                    "tree record 1 (/Playlists)\n"
                    "0000003c  00 00 00 00              firstChildIndex  0, contents not "
                    "stored\n"))
      << text;
  EXPECT_TRUE(holds(text, "dataIndex        3 -> data record 3 \"ten letters\"\n")) << text;
  EXPECT_TRUE(holds(text, "firstChildIndex  none, a media leaf\n")) << text;
  EXPECT_TRUE(holds(text, "data record 3, of record 3 (/Playlists/ten letters)\n")) << text;
  EXPECT_TRUE(holds(text,
                    "0000013c  74 65 6e 20 6c 65 74 74  name             \"ten letters\"\n"
                    "00000144  65 72 73\n"
                    "00000147  00 ...                   name fill        53 zero bytes\n"))
      << text;
}

TEST(Annotate, ShowsNamesOf64BytesAndNone) {
  const std::string text =
      annotateOf(InventoryImage(Layout::kOneTable, menu(std::string(64, 'n'), {menu("")})).bytes())
          .out;
  EXPECT_TRUE(holds(text, "00000064  6e 6e 6e 6e 6e 6e 6e 6e\n0000006c  07 "));
  EXPECT_TRUE(
      holds(text, "0000007c  00 ...                   name             \"\", 64 zero bytes"));
}

TEST(Annotate, ShowsDamageInPlace) {
  InventoryImage image(Layout::kTwoTable, menu("R", {menu("A")}));
  image.byte(1, 9).firstChild(1, 0).childCount(1, 1).name(1, std::string_view("A\0\xFF", 3));
  image.append("rest of it");
  const VerbResult result = annotateOf(image.bytes());
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(holds(result.out,
                    "00000001  09                       version          9\n"
                    "          ! error: header field version is 9, expected 1 [header-constant]\n"))
      << result.out;
  EXPECT_TRUE(holds(result.out,
                    "firstChildIndex  0 -> record 0 \"R\"\n"
                    "          ! error: cycle: record 0 is among its children and also above it "
                    "[cycle]\n"))
      << result.out;
  EXPECT_TRUE(holds(result.out, "name tail        \"\\x00\\xFF\"\n          ! warning: "))
      << result.out;
  EXPECT_TRUE(holds(result.out,
                    "bytes outside the records\n"
                    "000000d8  72 65 73 74 20 6f 66 20  bytes\n"
                    "          ! error: 10 bytes follow the last table [trailing-bytes]\n"
                    "000000e0  69 74\n"))
      << result.out;
}

TEST(Annotate, ShowsTheRestOfACutOffRecord) {
  InventoryImage image(Layout::kOneTable, menu("R"));
  const VerbResult result = annotateOf(image.cutTo(41).bytes());
  EXPECT_TRUE(holds(
      result.out,
      "bytes outside the records\n"
      "00000020  01 00 00 00 00 00 00 00  bytes\n"
      "          ! error: the root record is cut off with the end of the file [no-root]\n"
      "00000028  00\n"
      "          ! error: the file ends after 41 bytes, within the combined table, and should "
      "have 112 [truncated]\n"))
      << result.out;
}

}  // namespace
}  // namespace Orvane
