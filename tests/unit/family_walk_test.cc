#include "output/family_walk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "output/one_table_writer.h"
#include "output/tree_record.h"
#include "output/two_table_writer.h"
#include "plain/plain_menu.h"
#include "plain/plain_writer.h"
#include "recording_buffer.h"
#include "seeded_random.h"
#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

std::string textOf(const LayoutStep& step) {
  const std::string place = "@" + std::to_string(step.place);
  switch (step.kind) {
    case LayoutStep::Kind::kLeaves:
      return std::to_string(step.tracks.size()) + " leaves";
    case LayoutStep::Kind::kFirstChild:
      return place + " -> " + std::to_string(step.firstChild);
    default:
      return std::string(step.node->getName()) + (step.isLinked ? place : "") + " of " +
             std::to_string(step.childCount) + " #" + std::to_string(step.hash);
  }
}

std::vector<std::string> stepsOf(const MenuNode& node, std::uint32_t size) {
  FamilyWalk walk(node, size,
                  {.isDeferred = [](const MenuNode& child) { return child.getName() == "last"; },
                   .hashOf = [](const MenuNode& child) { return child.getMediaId() + 100; }});
  std::vector<std::string> all;
  for (std::vector<LayoutStep> steps; walk.take(steps);) {
    for (const LayoutStep& step : steps) all.push_back(textOf(step));
  }
  return all;
}

TEST(FamilyWalk, OfNothingIsOver) {
  const MenuTree tree;
  EXPECT_THAT(stepsOf(*tree.getRoot(), 1), ElementsAre());
}

TEST(FamilyWalk, GivesFamiliesOneAfterTheOther) {
  MenuTree tree;
  MenuNode& root = *tree.getRoot();
  MenuNode& last = addMenu(root, 1, "last");
  MenuNode& a = addMenu(root, 2, "a");
  addMedia(root, 3, "b");
  addMenu(last, 4, "c");
  addMedia(a, 5, "d");
  addMedia(a, 6, "e");
  EXPECT_THAT(stepsOf(root, 10),
              ElementsAre("last@0 of 1 #101", "a@1 of 2 #102", "b of 0 #103", "@0 -> 0", "@1 -> 13",
                          "d of 0 #105", "e of 0 #106", "@0 -> 15", "c@2 of 0 #104", "@2 -> 16"));
}

// A tree and a plain one that are filled alike.
class TwoTrees {
 public:
  explicit TwoTrees(std::uint32_t seed) : random_(seededRandom(seed)) {}

  // So many nodes, in menus of very different sizes. Many have the id and the name of another.
  void grow(std::size_t nodes) {
    std::vector<Pair> menus = {{tree.getRoot(), plain.get()}};
    while (nodes > 0) {
      const Pair parent = menus[random_() % 3 == 0 ? random_() % menus.size() : menus.size() - 1];
      std::size_t children = random_() % 50 == 0 ? 700 : random_() % 4;
      for (; nodes > 0 && children > 0; --nodes, --children) {
        const Pair child = append(parent);
        const bool isHidden = child.plain->nodeType == NODE_TYPE_MEDIA || isPlaylists(*child.plain);
        if (!isHidden || random_() % 8 == 0) menus.push_back(child);
      }
    }
  }

  MenuTree tree;
  std::unique_ptr<plain::PlainNode> plain = plain::plainRoot();

 private:
  struct Pair {
    MenuNode* node;
    plain::PlainNode* plain;
  };

  static bool isPlaylists(const plain::PlainNode& node) {
    return node.recType == RecType::kPlainMenu && node.name == "Playlists";
  }

  Pair append(const Pair& parent) {
    static constexpr std::array<const char*, 5> kNames = {"Playlists", "a", "b", "Playlists", ""};
    plain::PlainNode& made =
        *parent.plain->children.emplace_back(std::make_unique<plain::PlainNode>());
    made.nodeType = random_() % 20 == 0 ? NODE_TYPE_MEDIA : NODE_TYPE_MENU;
    made.mediaId = static_cast<std::uint32_t>(random_() % 40);
    made.name = kNames.at(random_() % kNames.size());
    made.recType = random_() % 8 == 0 ? RecType::kPlainMenu : RecType::kAlbum;
    MenuNode& node = parent.node->appendChild([&](MenuNode& fresh) {
      fresh.setAll(made.nodeType, made.mediaId, made.name, made.recType, 0, 0);
    });
    return {&node, &made};
  }

  std::mt19937 random_;
};

// By then another thread walks ahead.
TEST(FamilyWalk, OfManyNodesMakesThePlainFiles) {
  for (std::uint32_t seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    TwoTrees trees(seed);
    trees.grow(30'000);
    RecordingBuffer twoTables;
    writeTwoTable(trees.tree, twoTables);
    EXPECT_TRUE(twoTables.content == plain::plainTwoTableFile(*trees.plain));
    EXPECT_GT(twoTables.content.size(), 10'000 * sizeof(TreeRecord::Bytes));
    RecordingBuffer oneTable;
    writeOneTable(trees.tree, oneTable);
    EXPECT_TRUE(oneTable.content == plain::plainOneTableFile(*trees.plain));
  }
}

}  // namespace
}  // namespace Orvane::test
