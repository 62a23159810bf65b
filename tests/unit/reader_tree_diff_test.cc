#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "inventory_image.h"
#include "reader/tree_diff.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

std::string diffText(const InventoryImage& first, const InventoryImage& second) {
  const VerbResult result = diffOf(first.bytes(), second.bytes());
  EXPECT_EQ(result.status, result.out.empty() ? 0 : 1);
  EXPECT_EQ(result.messages, "");
  return result.out;
}

std::string diffText(const Sketch& first, const Sketch& second) {
  std::string text =
      diffText(InventoryImage(Layout::kTwoTable, first), InventoryImage(Layout::kTwoTable, second));
  EXPECT_EQ(
      diffText(InventoryImage(Layout::kOneTable, first), InventoryImage(Layout::kTwoTable, second)),
      text);
  return text;
}

TEST(TreeDiff, FindsNothingInTheSameTree) {
  EXPECT_EQ(diffText(sampleTree(), sampleTree()), "");
  InventoryImage other(Layout::kTwoTable, sampleTree());
  other.firstChild(3, 77);
  EXPECT_EQ(diffText(InventoryImage(Layout::kTwoTable, sampleTree()), other), "");
}

TEST(TreeDiff, AddedAndRemoved) {
  EXPECT_EQ(
      diffText(menu("R", {menu("A", {media("x", 1), media("y", 2)})}),
               menu("R", {menu("A", {media("x", 1), media("z", 3)}), menu("B", {media("w", 4)})})),
      "+ /B (menu, 2 records)\n"
      "- /A/y (media)\n"
      "+ /A/z (media)\n");
}

TEST(TreeDiff, Changed) {
  Sketch second = menu("R", {media("x", 2, 3)});
  second.children[0].recType = 9;
  second.children[0].attribMask = 500;
  EXPECT_EQ(diffText(menu("R", {media("x", 1, 1)}), second),
            "~ /x: mediaId 1 -> 2, recType 0 -> 9, rating 1 -> 3, attribMask 0 -> 500\n");
  EXPECT_EQ(
      diffText(menu("R", {media("x", 0, 0, {menu(""), menu("")})}), menu("R", {media("x", 0, 0)})),
      "~ /x: childCount 2 -> 0\n");
}

TEST(TreeDiff, ChangedKind) {
  Sketch leaf = media("x", 0);
  leaf.recType = 7;
  EXPECT_EQ(diffText(menu("R", {menu("x")}), menu("R", {leaf})), "~ /x: kind menu -> media\n");
  // Children that are stored are told one by one.
  const Sketch full = menu("R", {menu("x", {menu("y")})});
  EXPECT_EQ(diffText(full, menu("R", {leaf})), "~ /x: kind menu -> media\n- /x/y (menu)\n");
  EXPECT_EQ(diffText(menu("R", {leaf}), full), "~ /x: kind media -> menu\n+ /x/y (menu)\n");
}

TEST(TreeDiff, ChangedBytesBehindAName) {
  const InventoryImage first(Layout::kOneTable, menu("R"));
  InventoryImage second = first;
  second.name(0, std::string_view("R\0x", 3));
  EXPECT_EQ(diffText(first, second).substr(0, 27), "~ /: nameField R\\x00\\x00\\x0");
}

TEST(TreeDiff, ChangedCountsOfLeavesAreToldWithAllElse) {
  const InventoryImage first(Layout::kOneTable, menu("R", {media("x", 0, 0, {menu("")})}));
  InventoryImage second(Layout::kOneTable, menu("R", {media("x", 0)}));
  second.name(1, std::string_view("x\0y", 3));
  EXPECT_EQ(diffText(first, second).substr(0, 37), "~ /x: childCount 1 -> 0, nameField x\\");
  EXPECT_EQ(diffText(media("R", 0, 0, {menu("")}), media("S", 0)),
            "> /: name \"R\" -> \"S\"\n~ /: childCount 1 -> 0\n");
}

TEST(TreeDiff, Moved) {
  EXPECT_EQ(diffText(menu("R", {menu("A", {menu("M", {media("x", 1), media("y", 2)})}), menu("B")}),
                     menu("R", {menu("A"), menu("B", {menu("M", {media("x", 1, 2)})})})),
            "> /A/M -> /B/M\n"
            "- /A/M/y (media)\n"
            "~ /A/M/x: rating 0 -> 2\n");
}

// The second record of that name and id finds no partner any more.
TEST(TreeDiff, MovesEachRecordOnce) {
  EXPECT_EQ(
      diffText(menu("R", {menu("A", {media("x", 1)}), menu("B"), menu("C")}),
               menu("R", {menu("A"), menu("B", {media("x", 1)}), menu("C", {media("x", 1)})})),
      "> /A/x -> /B/x\n"
      "+ /C/x (media)\n");
}

TEST(TreeDiff, Reordered) {
  EXPECT_EQ(diffText(menu("R", {menu("a"), menu("b"), menu("c"), menu("d")}),
                     menu("R", {menu("b"), menu("c"), menu("a"), menu("d")})),
            "> /a: position 1 -> 3\n");
}

TEST(TreeDiff, RenamedRoot) {
  EXPECT_EQ(diffText(menu("R"), menu("S")), "> /: name \"R\" -> \"S\"\n");
}

TEST(TreeDiff, ChildrenOfTheSameNameMatchInOrder) {
  EXPECT_EQ(diffText(menu("R", {media("x", 1), media("x", 2), media("x", 1)}),
                     menu("R", {media("x", 1), media("x", 1), media("x", 2), media("x", 1)})),
            "+ /x (media)\n> /x: position 2 -> 3\n");
}

TEST(TreeDiff, ComparesCountsWhereContentsAreNotStored) {
  const Sketch first = menu("R", {menu("Playlists", {media("x", 1)}), menu("Playlists")});
  const Sketch second =
      menu("R", {menu("Playlists", {media("y", 2), media("z", 3)}), menu("Playlists")});
  EXPECT_EQ(
      diffText(InventoryImage(Layout::kOneTable, first), InventoryImage(Layout::kTwoTable, first)),
      "");
  EXPECT_EQ(
      diffText(InventoryImage(Layout::kTwoTable, first), InventoryImage(Layout::kOneTable, first)),
      "");
  for (const Layout layout : {Layout::kOneTable, Layout::kTwoTable}) {
    EXPECT_EQ(diffText(InventoryImage(Layout::kTwoTable, first), InventoryImage(layout, second)),
              "~ /Playlists: childCount 1 -> 2\n");
    EXPECT_EQ(diffText(InventoryImage(layout, first), InventoryImage(Layout::kTwoTable, second)),
              "~ /Playlists: childCount 1 -> 2\n");
  }
}

TEST(TreeDiff, SaysWhatSharingChanged) {
  InventoryImage shared(Layout::kTwoTable,
                        menu("R", {menu("A", {media("x", 1, 3)}), menu("B", {media("x", 1, 1)})}));
  shared.dataIndex(4, 3);
  const InventoryImage apart(
      Layout::kOneTable, menu("R", {menu("A", {media("x", 1, 3)}), menu("B", {media("x", 1, 1)})}));
  EXPECT_EQ(diffText(apart, shared), "~ /B/x: rating 1 -> 3 (shared data record)\n");
  EXPECT_EQ(diffText(shared, apart), "~ /B/x: rating 3 -> 1 (shared data record)\n");
}

TEST(TreeDiff, ComparesTheSoundPartOfADamagedFile) {
  const InventoryImage sound(Layout::kTwoTable, sampleTree());
  InventoryImage damaged = sound;
  damaged.firstChild(4, 1);
  const VerbResult result = diffOf(sound.bytes(), damaged.bytes());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "- /Artists/Anna/Song A (media)\n- /Artists/Anna/Song B (media)\n");
  EXPECT_EQ(result.messages,
            "skein: b.inv: error: damaged, compared in part; for the faults run: skein check\n");
}

TEST(TreeDiff, CountsWithStat) {
  const InventoryImage first(Layout::kTwoTable, menu("R", {menu("a"), menu("b")}));
  const InventoryImage second(Layout::kTwoTable, menu("R", {menu("c"), menu("b"), menu("d")}));
  DiffOptions options;
  options.statOnly = true;
  EXPECT_EQ(diffOf(first.bytes(), second.bytes(), Format::kText, options).out,
            "2 added, 1 removed, 0 moved, 0 reordered, 0 changed\n");
  EXPECT_EQ(diffOf(first.bytes(), first.bytes(), Format::kText, options).out, "");
}

// Two chains of menus that change places on every level: each move shows only once the one above it
// has been found, which must not make each of them cost a pass over all.
TEST(TreeDiff, TakesManyMovesBelowEachOther) {
  constexpr std::uint32_t kLevels = 50000;
  const auto chains = [](bool swapped) {
    // Record 1 + 2 * level + side; each holds one record of the next level.
    InventoryImage image(Layout::kOneTable, menu("R"));
    std::string records;
    for (std::uint32_t i = 0; i < 2 * kLevels; ++i) {
      const std::uint32_t below = i / 2 + 1 < kLevels ? 1 : 0;
      const std::uint32_t side = swapped && i / 2 % 2 == 1 ? 1 - i % 2 : i % 2;
      std::string record(80, '\0');
      for (std::size_t k = 0; k < 4; ++k) record[k] = static_cast<char>((i + 3) >> (8 * k));
      record[4] = static_cast<char>(below);
      const std::string name = std::to_string(i / 2 * 2 + side);
      record.replace(12, name.size(), name);
      record[76] = 7;
      records += record;
    }
    image.number(24, 1 + 2 * kLevels).childCount(0, 2).append(records);
    return image;
  };
  DiffOptions options;
  options.statOnly = true;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(diffOf(chains(false).bytes(), chains(true).bytes(), Format::kText, options).out,
            "0 added, 0 removed, 99998 moved, 0 reordered, 0 changed\n");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// Time must not grow with the square of a family: reversed siblings are the worst case.
TEST(TreeDiff, TakesManyReorderedSiblings) {
  std::vector<Sketch> children;
  for (std::uint32_t i = 0; i < 50000; ++i) children.push_back(media(std::to_string(i), i));
  const InventoryImage first(Layout::kTwoTable, menu("R", children));
  std::reverse(children.begin(), children.end());
  const InventoryImage second(Layout::kTwoTable, menu("R", children));
  DiffOptions options;
  options.statOnly = true;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(diffOf(first.bytes(), second.bytes(), Format::kText, options).out,
            "0 added, 0 removed, 0 moved, 49999 reordered, 0 changed\n");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
}  // namespace Orvane
