// What a comparison says beside the differences themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "inventory_image.h"
#include "skein/exit_status.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

InventoryImage image(const Sketch& root) {
  return {Layout::kTwoTable, root};
}

TEST(DiffReport, CountsAllThatIsBelowAnAddedRecord) {
  const Sketch added = menu("A", {menu("B", {media("x", 1), media("y", 2)}), media("z", 3)});
  const InventoryImage first = image(menu("Home"));
  const InventoryImage second = image(menu("Home", {added}));
  EXPECT_THAT(diffOf(first.bytes(), second.bytes()).out, HasSubstr("+ /A (menu, 5 records)\n"));
}

TEST(DiffReport, DamageIsADifferenceUnlessTheFilesAreEqual) {
  const InventoryImage sound = image(menu("Home", {menu("A")}));
  InventoryImage damaged = image(menu("Home", {menu("A"), menu("B")}));
  damaged.childCount(0, 1);  // B can't be reached; all else is as in the other
  VerbResult result = diffOf(sound.bytes(), damaged.bytes());
  EXPECT_EQ(result.status, kStatusNo);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.messages, HasSubstr("skein: b.inv: error: damaged"));
  result = diffOf(damaged.bytes(), sound.bytes());
  EXPECT_EQ(result.status, kStatusNo);
  EXPECT_THAT(result.messages, HasSubstr("skein: a.inv: error: damaged"));
  result = diffOf(damaged.bytes(), damaged.bytes());
  EXPECT_EQ(result.status, kStatusYes);
  EXPECT_EQ(result.messages, "");
}

TEST(DiffReport, MovesAsFewSiblingsAsPossible) {
  const InventoryImage first = image(menu("Home", {menu("A"), menu("B"), menu("C"), menu("D")}));
  const InventoryImage second = image(menu("Home", {menu("D"), menu("A"), menu("B"), menu("C")}));
  EXPECT_EQ(diffOf(first.bytes(), second.bytes()).out, "> /D: position 4 -> 1\n");
}

TEST(DiffReport, MovesEachOfSeveralAlike) {
  const Sketch x = menu("x");
  const InventoryImage first = image(menu("Home", {menu("A", {x, x}), menu("B")}));
  const InventoryImage second = image(menu("Home", {menu("A"), menu("B", {x, x})}));
  EXPECT_EQ(diffOf(first.bytes(), second.bytes()).out, "> /A/x -> /B/x\n> /A/x -> /B/x\n");
  const InventoryImage more = image(menu("Home", {menu("A"), menu("B", {x, x, x})}));
  EXPECT_EQ(diffOf(first.bytes(), more.bytes()).out,
            "> /A/x -> /B/x\n> /A/x -> /B/x\n+ /B/x (menu)\n");
}

TEST(DiffReport, CountsOnlyWhatIsNotStored) {
  const auto with = [](const Sketch& child) { return image(menu("Home", {child})); };
  const Sketch one = media("x", 1, 0, {menu("")});
  const Sketch two = media("x", 1, 0, {menu(""), menu("")});
  EXPECT_EQ(diffOf(with(one).bytes(), with(two).bytes()).out, "~ /x: childCount 1 -> 2\n");
  EXPECT_EQ(diffOf(with(menu("x")).bytes(), with(menu("x", {menu("y")})).bytes()).out,
            "+ /x/y (menu)\n");
  Sketch leaf = two;
  leaf.mediaId = 0;
  leaf.recType = 7;
  EXPECT_THAT(diffOf(with(menu("x")).bytes(), with(leaf).bytes()).out,
              Not(HasSubstr("childCount")));
}

// Each by itself: all records can be reached.
TEST(DiffReport, EveryKindOfDamageIsTold) {
  const InventoryImage sound = image(menu("Home", {menu("A", {media("x", 1)}), menu("B")}));
  InventoryImage outside = sound;
  outside.childCount(2, 9);
  InventoryImage shared = sound;
  shared.firstChild(2, 3).childCount(2, 1);
  InventoryImage cycle = sound;
  cycle.firstChild(2, 2).childCount(2, 1);
  InventoryImage withoutItem = sound;
  withoutItem.dataIndex(3, 9);
  InventoryImage empty(Layout::kOneTable, menu("Home"));
  empty.number(24, 0).cutTo(32);
  for (const InventoryImage& damaged : {outside, shared, cycle, withoutItem, empty}) {
    const VerbResult result = diffOf(sound.bytes(), damaged.bytes());
    EXPECT_EQ(result.status, kStatusNo);
    EXPECT_EQ(result.messages,
              "skein: b.inv: error: damaged, compared in part; for the faults run: skein check\n");
  }
  EXPECT_EQ(diffOf(sound.bytes(), sound.bytes()).messages, "");
}

TEST(DiffReport, StatLeavesTheDifferencesOutOfJson) {
  const InventoryImage first = image(menu("Home"));
  const InventoryImage second = image(menu("Home", {menu("A")}));
  DiffOptions options;
  EXPECT_THAT(diffOf(first.bytes(), second.bytes(), Format::kJson, options).out,
              HasSubstr("\"type\":\"difference\""));
  options.statOnly = true;
  const std::string out = diffOf(first.bytes(), second.bytes(), Format::kJson, options).out;
  EXPECT_THAT(out, Not(HasSubstr("\"type\":\"difference\"")));
  EXPECT_THAT(out, HasSubstr("\"added\":1"));
}

TEST(DumpPath, NamesWhatIsMissingBelowTheLongestWayFound) {
  const InventoryImage tree = image(menu("Home", {menu("A", {menu("B")}), menu("A")}));
  DumpOptions options;
  options.path = {"A", "B", "C"};
  EXPECT_EQ(dumpOf(tree.bytes(), Format::kText, options).messages,
            "skein: a.inv: error: no \"C\" in /A/B\n");
}

}  // namespace
}  // namespace Orvane
