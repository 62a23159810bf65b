#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "inventory_image.h"
#include "reader/inventory_check.h"
#include "reader/menu_path.h"

namespace Orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Findings in words: "rule@offset: message".
class Findings : public FindingSink {
 public:
  explicit Findings(const InventoryView& view) : walk_(view), path_(view, walk_.parents()) {
    InventoryCheck check(view, *this);
    check.run(walk_);
    EXPECT_EQ(check.count(), texts.size());
  }

  void found(const Finding& finding) override {
    std::ostringstream text;
    text << infoOf(finding.rule).name << '@' << finding.offset;
    if (finding.record != kNoRecord) {
      text << " #" << finding.record << ' ' << path_.of(finding.record);
    }
    if (finding.dataRecord != kNoRecord) text << " data " << finding.dataRecord;
    text << ": " << describe(finding);
    texts.push_back(text.str());
  }

  std::vector<std::string> texts;

 private:
  TreeWalk walk_;
  const MenuPath path_;
};

std::vector<std::string> findingsOf(const InventoryImage& image) {
  const InventoryView view = viewOf(image);
  return Findings(view).texts;
}

InventoryImage two(const Sketch& root = sampleTree()) {
  return {Layout::kTwoTable, root};
}
InventoryImage one(const Sketch& root = sampleTree()) {
  return {Layout::kOneTable, root};
}

TEST(InventoryCheck, FindsNothingInWhatIsSound) {
  const Sketch rare = menu(
      std::string(64, 'r'),
      {media("Leaf with a count", 1, 0, {menu(""), menu("")}), menu("Playlists", {media("A", 2)}),
       menu("Playlists", {media("B", 3)}), menu("", {menu("Empty")}), media("\xC3\xA9", 4)});
  EXPECT_THAT(findingsOf(two()), IsEmpty());
  EXPECT_THAT(findingsOf(one()), IsEmpty());
  EXPECT_THAT(findingsOf(two(rare)), IsEmpty());
  EXPECT_THAT(findingsOf(one(rare)), IsEmpty());
  EXPECT_THAT(findingsOf(two(menu("Home"))), IsEmpty());
  EXPECT_THAT(findingsOf(two(media("A leaf for a root", 9))), IsEmpty());
}

TEST(InventoryCheck, HeaderConstant) {
  EXPECT_THAT(findingsOf(two().byte(0, 7)),
              ElementsAre("header-constant@0: header field zero is 7, expected 0"));
  EXPECT_THAT(findingsOf(two().byte(1, 2)),
              ElementsAre("header-constant@1: header field version is 2, expected 1"));
  EXPECT_THAT(findingsOf(two().byte(3, 1)),
              ElementsAre("header-constant@2: header field reserved16 is 256, expected 0"));
  EXPECT_THAT(findingsOf(one().number(4, 5)),
              ElementsAre("header-constant@4: header field reserved32 is 5, expected 0"));
  EXPECT_THAT(findingsOf(one().number(12, 32)),
              ElementsAre("header-constant@12: header field headerSize is 32, expected 16"));
}

TEST(InventoryCheck, TableCount) {
  EXPECT_THAT(findingsOf(two().number(8, 1)),
              ElementsAre("table-count@8: the number of tables is 1, expected 2 by the first "
                          "table's kind and record size"));
  EXPECT_THAT(findingsOf(one().number(8, 0)),
              ElementsAre("table-count@8: the number of tables is 0, expected 1 by the first "
                          "table's kind and record size"));
}

TEST(InventoryCheck, DescriptorConstant) {
  EXPECT_THAT(findingsOf(two().byte(16, 2)),
              ElementsAre("descriptor-constant@16: tree table descriptor: kind is 2, expected 1"));
  EXPECT_THAT(
      findingsOf(two().byte(33, 0)),
      ElementsAre("descriptor-constant@33: data table descriptor: version is 0, expected 1"));
  EXPECT_THAT(
      findingsOf(one().byte(18, 9)),
      ElementsAre("descriptor-constant@18: combined table descriptor: reserved is 9, expected 0"));
}

TEST(InventoryCheck, RecordSize) {
  EXPECT_THAT(findingsOf(two().number(28, 16)),
              ElementsAre("record-size@28: tree table descriptor: record size is 16, expected 12"));
  EXPECT_THAT(findingsOf(two().number(44, 0)),
              ElementsAre("record-size@44: data table descriptor: record size is 0, expected 72"));
  EXPECT_THAT(
      findingsOf(one().number(28, 81)),
      ElementsAre("record-size@28: combined table descriptor: record size is 81, expected 80"));
}

TEST(InventoryCheck, TableOffset) {
  EXPECT_THAT(findingsOf(two().number(20, 32)),
              ElementsAre("table-offset@20: tree table descriptor: offset is 32, expected 48"));
  EXPECT_THAT(findingsOf(two().number(36, 49)),
              ElementsAre("table-offset@36: data table descriptor: offset is 49, expected 168"));
  EXPECT_THAT(findingsOf(one().number(20, 0xFFFFFFFF)),
              ElementsAre("table-offset@20: combined table descriptor: offset is 4294967295, "
                          "expected 32"));
}

TEST(InventoryCheck, TableOverlap) {
  EXPECT_THAT(findingsOf(two().number(24, 11).append("x")),
              ElementsAre("table-offset@36: data table descriptor: offset is 168, expected 180",
                          "table-overlap@168: the tree table ends at byte 180, inside the data "
                          "table that begins at byte 168",
                          "trailing-bytes@888: 1 byte follows the last table"));
  EXPECT_THAT(
      findingsOf(two().number(24, 0xFFFFFFFF).append("x")),
      ElementsAre("table-offset@36: data table descriptor: offset is 168, but by its count the "
                  "tree table ends at byte 51539607588",
                  "table-overlap@168: the tree table runs into the data table that begins at byte "
                  "168: by its count it ends at byte 51539607588, beyond the end of the file",
                  "trailing-bytes@888: 1 byte follows the last table"));
}

TEST(InventoryCheck, RecordCount) {
  for (const std::uint32_t count : {0U, 1U, 9U, 11U, 70U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    EXPECT_THAT(
        findingsOf(two().number(24, count)),
        ElementsAre("record-count@24: tree table descriptor: count is " + std::to_string(count) +
                    ", but the data table's offset and the file's length say 10"));
  }
  // Where one of the two witnesses is unsound the count stands.
  EXPECT_THAT(findingsOf(two().number(24, 9).number(36, 169)),
              testing::Each(testing::Not(testing::StartsWith("record-count"))));
  EXPECT_THAT(findingsOf(two().number(24, 9).append("x")),
              testing::Each(testing::Not(testing::StartsWith("record-count"))));
}

TEST(InventoryCheck, Truncated) {
  InventoryImage cut = two();
  EXPECT_THAT(
      findingsOf(cut.cutTo(cut.size() - 1)),
      ElementsAre("truncated@887: the file ends after 887 bytes, within the data table, and should "
                  "have 888",
                  "data-index@887 data 9: data record 9 is cut off with the end of the file"));
  EXPECT_THAT(
      findingsOf(two().cutTo(168 + 4 * 72)),
      ElementsAre("truncated@456: the file ends after 456 bytes, within the data table, and should "
                  "have 888",
                  "data-index@456 data 4: data records 4 to 9 are cut off with the end of the "
                  "file"));
  // Only what is cut off and used counts.
  EXPECT_THAT(findingsOf(two(menu("Home")).number(40, 3)),
              ElementsAre("truncated@132: the file ends after 132 bytes, within the data table, "
                          "and should have 276"));
  EXPECT_THAT(findingsOf(one().cutTo(20)),
              ElementsAre("truncated@20: the file ends after 20 bytes, within the 32 bytes of "
                          "header and table descriptors",
                          "no-root@20: the root record is cut off with the end of the file"));
}

TEST(InventoryCheck, TrailingBytes) {
  EXPECT_THAT(findingsOf(two().append("x")),
              ElementsAre("trailing-bytes@888: 1 byte follows the last table"));
  const InventoryImage another = one(menu("B"));
  std::string bytes(another.bytes().begin(), another.bytes().end());
  EXPECT_THAT(findingsOf(one(menu("A")).append(bytes)),
              ElementsAre("trailing-bytes@112: 112 bytes follow the last table: they begin like "
                          "another inventory"));
}

TEST(InventoryCheck, NoRoot) {
  InventoryImage none = one(menu("A"));
  none.number(24, 0).cutTo(32);
  EXPECT_THAT(findingsOf(none),
              ElementsAre("no-root@32: there is no root record: the combined table is empty"));
  for (const std::size_t size : {40U, 48U, 59U}) {
    const std::vector<std::string> cut = findingsOf(two().cutTo(size));
    ASSERT_EQ(cut.size(), 2U);
    EXPECT_THAT(cut[0], testing::StartsWith("truncated@"));
    EXPECT_THAT(cut[1], testing::EndsWith(": the root record is cut off with the end of the file"));
  }
  EXPECT_THAT(findingsOf(two().number(36, 50).append("x")),
              testing::Contains("no-root@48: there is no root record: the data table leaves no "
                                "room for it"));
}

TEST(InventoryCheck, ChildRange) {
  InventoryImage image = two(menu("Home", {menu("A")}));
  EXPECT_THAT(findingsOf(image.childCount(1, 3)),
              ElementsAre("child-range@60 #1 /A: children 2 to 4 lie outside the table of 2 "
                          "records"));
  EXPECT_THAT(findingsOf(image.childCount(1, 1)),
              ElementsAre("child-range@60 #1 /A: child 2 lies outside the table of 2 records"));
  InventoryImage only = two(menu("Home"));
  EXPECT_THAT(findingsOf(only.childCount(0, 2).firstChild(0, 1)),
              ElementsAre("child-range@48 #0 /: children 1 to 2 lie outside the table of 1 "
                          "record"));
  InventoryImage far = one(menu("Home", {menu("A")}));
  EXPECT_THAT(findingsOf(far.childCount(1, 0xFFFFFFFF).firstChild(1, 0xFFFFFFFE)),
              ElementsAre("child-range@112 #1 /A: children 4294967294 to 8589934588 lie outside "
                          "the table of 2 records"));
}

TEST(InventoryCheck, Cycle) {
  InventoryImage image = two(menu("Home", {menu("A", {menu("B")})}));
  EXPECT_THAT(
      findingsOf(image.firstChild(2, 1).childCount(2, 1)),
      ElementsAre("cycle@72 #2 /A/B: cycle: record 1 is among its children and also above it"));
  InventoryImage self = one(menu("Home", {menu("A")}));
  EXPECT_THAT(findingsOf(self.firstChild(1, 1).childCount(1, 1)),
              ElementsAre("cycle@112 #1 /A: cycle: the record is among its own children"));
}

TEST(InventoryCheck, TwoParents) {
  InventoryImage image = two(menu("Home", {menu("A", {media("X", 1)}), menu("B")}));
  EXPECT_THAT(findingsOf(image.firstChild(2, 3).childCount(2, 1)),
              ElementsAre("two-parents@72 #2 /B: two parents: its children from record 3 on are "
                          "those of record 1"));
}

TEST(InventoryCheck, OverlappingChildren) {
  InventoryImage image = two(menu("Home", {menu("A", {media("X", 1), media("Y", 2)}), menu("B")}));
  EXPECT_THAT(findingsOf(image.firstChild(2, 4).childCount(2, 1)),
              ElementsAre("overlapping-children@72 #2 /B: its children overlap: record 4 is "
                          "already a child of record 1"));
}

TEST(InventoryCheck, DataIndex) {
  InventoryImage image = two(menu("Home", {menu("A")}));
  EXPECT_THAT(findingsOf(image.dataIndex(1, 0xFFFFFFFF)),
              ElementsAre("data-index@68 #1 /?: data index 4294967295 is outside the table of 2 "
                          "data records",
                          "unused-data@144 data 1: data record 1 is not used by any record"));
}

TEST(InventoryCheck, NameTail) {
  EXPECT_THAT(findingsOf(two(menu("Home")).name(0, std::string_view("A\0\0B", 4))),
              ElementsAre("name-tail@67 #0 / data 0: bytes other than zero follow the terminator "
                          "of the name, first at byte 3 of the field"));
  EXPECT_THAT(findingsOf(one(menu("Home")).byte(32 + 12 + 63, 1)),
              ElementsAre("name-tail@107 #0 /: bytes other than zero follow the terminator of the "
                          "name, first at byte 63 of the field"));
}

TEST(InventoryCheck, NameUtf8) {
  EXPECT_THAT(
      findingsOf(one(menu("Home", {media("ab\xFF", 1)}))),
      ElementsAre("name-utf8@126 #1 /ab\\xFF: the name is not valid UTF-8, from byte 2 on"));
  for (const char* bad : {"\x80", "\xC0\x80", "\xC3", "\xE0\x80\x80", "\xED\xA0\x80",
                          "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80"}) {
    EXPECT_EQ(findingsOf(one(menu(bad))).size(), 1U) << bad;
  }
  for (const char* good : {"\xC2\x80", "\xE0\xA0\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80",
                           "\xF4\x8F\xBF\xBF", "\x7F"}) {
    EXPECT_THAT(findingsOf(one(menu(good))), IsEmpty()) << good;
  }
}

TEST(InventoryCheck, UnreachableRecord) {
  InventoryImage image = two(menu("Home", {menu("A", {media("X", 1), media("Y", 2)})}));
  EXPECT_THAT(
      findingsOf(image.childCount(1, 0)),
      ElementsAre("unreachable-record@72 #2 ?: records 2 to 3 are not reachable from the "
                  "root",
                  "unused-data@240 data 2: data records 2 to 3 are not used by any record"));
}

TEST(InventoryCheck, UnusedData) {
  EXPECT_THAT(findingsOf(two(menu("Home")).addDataRecord()),
              ElementsAre("unused-data@132 data 1: data record 1 is not used by any record"));
  // Many, to cross the words of a bit set.
  InventoryImage image = two(menu("Home", std::vector<Sketch>(200, menu("A"))));
  for (std::uint32_t i = 1; i < 201; ++i) image.dataIndex(i, i % 2 == 0 ? 130 : 5);
  EXPECT_THAT(
      findingsOf(image),
      ElementsAre(
          "unused-data@2532 data 1: data records 1 to 4 are not used by any record",
          "unused-data@2892 data 6: data records 6 to 129 are not used by any record",
          "unused-data@11892 data 131: data records 131 to 200 are not used by any record"));
}

TEST(InventoryCheck, EveryRuleIsNamedOnce) {
  for (std::size_t i = 0; i < kRuleCount; ++i) {
    const Rule rule = static_cast<Rule>(i);
    EXPECT_EQ(ruleByName(infoOf(rule).name), rule);
    EXPECT_FALSE(infoOf(rule).summary.empty());
  }
  EXPECT_EQ(ruleByName("nonsense"), std::nullopt);
}

TEST(RuleSettings, WordsSilenceAndPromote) {
  RuleSettings settings;
  EXPECT_EQ(settings.of(Rule::kNameUtf8), Severity::kWarning);
  EXPECT_TRUE(settings.apply("error"));
  EXPECT_EQ(settings.of(Rule::kNameUtf8), Severity::kError);
  EXPECT_TRUE(settings.apply("no-name-utf8"));
  EXPECT_EQ(settings.of(Rule::kNameUtf8), Severity::kOff);
  EXPECT_TRUE(settings.apply("error=name-utf8"));
  EXPECT_EQ(settings.of(Rule::kNameUtf8), Severity::kError);
  EXPECT_TRUE(settings.apply("no-error=cycle"));
  EXPECT_EQ(settings.of(Rule::kCycle), Severity::kWarning);
  EXPECT_TRUE(settings.apply("no-no-root"));
  EXPECT_EQ(settings.of(Rule::kNoRoot), Severity::kOff);
  EXPECT_TRUE(settings.apply("no-root"));
  EXPECT_EQ(settings.of(Rule::kNoRoot), Severity::kWarning);
  EXPECT_TRUE(settings.apply("no-name-utf8"));
  EXPECT_TRUE(settings.apply("error"));
  EXPECT_EQ(settings.of(Rule::kNameUtf8), Severity::kOff) << "silence is no warning";
  EXPECT_EQ(settings.of(Rule::kNoRoot), Severity::kError);
  for (const char* word : {"", "no-", "error=", "error=nonsense", "no-nonsense", "Cycle"}) {
    EXPECT_FALSE(settings.apply(word)) << word;
  }
}

}  // namespace
}  // namespace Orvane
