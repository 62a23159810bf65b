// What the verbs say of records with odd types, missing items and unusual places.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "inventory_image.h"
#include "reader/menu_path.h"
#include "reader/node_kind.h"
#include "reader/tree_walk.h"
#include "skein/exit_status.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// A menu in a menu in a menu, and so on: as many of them below the root.
Sketch chain(std::size_t length) {
  Sketch root = menu("m");
  for (std::size_t i = 0; i < length; ++i) root = menu("m", {root});
  root.name = "Home";
  return root;
}

TEST(NodeKind, OfMenusIsToldByTheirTypeAlone) {
  std::array<std::string_view, 256> names{};
  names.fill("menu");
  names[3] = "album";
  names[4] = "artist";
  names[5] = "genre";
  names[6] = "playlist";
  names[11] = "one-star";
  names[12] = "two-stars";
  names[13] = "three-stars";
  for (std::size_t type = 0; type < names.size(); ++type) {
    const auto recType = static_cast<std::uint8_t>(type);
    EXPECT_EQ(kindOf(false, recType), names[type]) << type;
    EXPECT_EQ(kindOf(true, recType), "media") << type;
    EXPECT_EQ(isUsualRecType(false, recType), type == 7 || names[type] != "menu") << type;
    EXPECT_EQ(isUsualRecType(true, recType), type == 0) << type;
  }
}

TEST(MenuPathLength, IsCutOnlyBeyondTheNamesThatAreKept) {
  const InventoryImage image(Layout::kOneTable, chain(MenuPath::kMaxNames + 1));
  const InventoryView view = viewOf(image);
  TreeWalk walk(view);
  while (walk.next() != TreeWalk::Event::kEnd) {
  }
  const MenuPath path(view, walk.parents());
  std::string names;
  for (std::size_t i = 0; i < MenuPath::kMaxNames; ++i) names += "/m";
  EXPECT_EQ(path.of(MenuPath::kMaxNames), names);
  EXPECT_EQ(path.of(MenuPath::kMaxNames + 1), "/..." + names);
}

TEST(DumpOfAChain, TellsTheDepthWhereIndentationEnds) {
  const InventoryImage image(Layout::kOneTable, chain(42));
  const std::string out = dumpOf(image.bytes()).out;
  EXPECT_THAT(out, HasSubstr("\n" + std::string(80, ' ') + "menu \"m\" #40,"));
  EXPECT_THAT(out, HasSubstr("\n" + std::string(80, ' ') + "(depth 41) menu \"m\" #41,"));
}

TEST(DumpOfAMissingItem, ShowsNoneOfItsFields) {
  InventoryImage image(Layout::kTwoTable, menu("Home", {menu("A")}));
  image.dataIndex(1, 9);
  EXPECT_THAT(dumpOf(image.bytes()).out, Not(HasSubstr(", type")));
  EXPECT_THAT(dumpOf(image.bytes(), Format::kJson).out,
              HasSubstr("\"name\":null,\"mediaId\":null,\"recType\":null"));
}

TEST(DumpOfALeaf, ShowsATypeThatALeafDoesNotHave) {
  Sketch odd = media("Song", 1);
  odd.recType = 7;
  const InventoryImage image(Layout::kTwoTable, menu("Home", {odd, media("Other", 2)}));
  EXPECT_THAT(dumpOf(image.bytes()).out, HasSubstr("\"Song\" #1, id 1, type 7\n"));
  EXPECT_THAT(dumpOf(image.bytes()).out, HasSubstr("\"Other\" #2, id 2\n"));
}

TEST(DumpOfALoneRoot, CountsInTheSingular) {
  const InventoryImage image(Layout::kTwoTable, menu("Home"));
  EXPECT_THAT(dumpOf(image.bytes()).out, HasSubstr(" 132 bytes, 1 record, 1 data record\n"));
}

TEST(DumpOfAPart, DoesNotMissWhatItWasNotToShow) {
  InventoryImage image(Layout::kTwoTable, menu("Home", {menu("A"), menu("B")}));
  image.childCount(0, 1);
  const std::string unreachable = "not reachable";
  EXPECT_THAT(dumpOf(image.bytes()).out, HasSubstr(unreachable));
  DumpOptions options;
  options.path = {"A"};
  EXPECT_THAT(dumpOf(image.bytes(), Format::kText, options).out, Not(HasSubstr(unreachable)));
  options = {};
  options.record = 1;
  EXPECT_THAT(dumpOf(image.bytes(), Format::kText, options).out, Not(HasSubstr(unreachable)));
  // Nothing is left out where nothing is below the last level.
  options = {};
  options.depth = 1;
  EXPECT_THAT(dumpOf(image.bytes(), Format::kText, options).out, HasSubstr(unreachable));
  options.depth = 0;
  EXPECT_THAT(dumpOf(image.bytes(), Format::kText, options).out, Not(HasSubstr(unreachable)));
}

TEST(DumpWithoutARoot, IsDamagedAndMissesNothing) {
  InventoryImage image(Layout::kOneTable, menu("Home"));
  image.number(24, 0).cutTo(32);
  const VerbResult result = dumpOf(image.bytes());
  EXPECT_EQ(result.status, kStatusNo);
  EXPECT_THAT(result.messages, HasSubstr("damaged, see the lines with"));
}

TEST(CheckOfUnusedData, NamesNoRecordBesideTheDataRecord) {
  InventoryImage image(Layout::kTwoTable, menu("Home"));
  image.addDataRecord();
  EXPECT_THAT(checkOf(image.bytes()).out, HasSubstr(": data record 1: error: "));
  InventoryImage tail(Layout::kTwoTable, menu("Home"));
  tail.name(0, std::string_view("H\0me", 4));
  EXPECT_THAT(checkOf(tail.bytes()).out, HasSubstr(": record 0 (/), data record 0: warning: "));
}

TEST(AnnotationOfUnusedData, SaysThatNoRecordUsesIt) {
  InventoryImage image(Layout::kTwoTable, menu("Home"));
  image.addDataRecord();
  EXPECT_THAT(annotateOf(image.bytes()).out, HasSubstr("data record 1, used by no record\n"));
}

TEST(DecompileOfOddRoots, MakesOneElementWhateverTheRootIs) {
  InventoryImage none(Layout::kOneTable, menu("Home"));
  none.number(24, 0).cutTo(32);
  EXPECT_THAT(decompileOf(none.bytes()).out, HasSubstr("<inventory/>"));

  InventoryImage withoutItem(Layout::kTwoTable, menu("Home"));
  withoutItem.dataIndex(0, 9);
  EXPECT_THAT(decompileOf(withoutItem.bytes()).messages, Not(HasSubstr("root-field")));

  const InventoryImage leaf(Layout::kTwoTable, media("Song", 0, 0, {menu(""), menu("")}));
  EXPECT_THAT(decompileOf(leaf.bytes()).messages, HasSubstr("[root-leaf]"));
  EXPECT_THAT(decompileOf(leaf.bytes()).out, Not(HasSubstr("<menu")));

  Sketch artist = menu("Home");
  artist.recType = 4;
  const VerbResult odd = decompileOf(InventoryImage(Layout::kTwoTable, artist).bytes());
  EXPECT_THAT(odd.messages, HasSubstr("the root's recType is 4"));
  EXPECT_THAT(odd.out, Not(HasSubstr("rectype")));
}

TEST(DecompileOfMedia, LeavesOutNumbersThatAreZero) {
  const InventoryImage image(Layout::kTwoTable, menu("Home", {media("Song", 0)}));
  EXPECT_THAT(decompileOf(image.bytes()).out, HasSubstr("<media name=\"Song\" rectype=\"0\"/>"));
}

TEST(DecompileOfManyChildren, CountsInThePlural) {
  InventoryImage image(Layout::kTwoTable, menu("Home", {media("Song", 1)}));
  image.childCount(1, 1'000'001);
  EXPECT_THAT(decompileOf(image.bytes()).messages,
              HasSubstr("a count of 1000001 children that are not stored"));
}

// Only a media element brings an id to a menu that another one of its name displaced.
TEST(DecompileOfDisplacedMenus, KeepsAnIdWithoutARating) {
  Sketch first = menu("Playlists");
  first.mediaId = 5;
  InventoryImage image(Layout::kTwoTable, menu("Home", {first, menu("Playlists")}));
  image.firstChild(1, 0).childCount(1, 2);
  EXPECT_THAT(decompileOf(image.bytes()).out,
              HasSubstr("<media name=\"Playlists\" mediaid=\"5\">"));
}

}  // namespace
}  // namespace Orvane
