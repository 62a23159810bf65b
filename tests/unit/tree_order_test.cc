#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> namesOf(const MenuNode& menu) {
  std::vector<std::string> names;
  for (auto child = menu.childrenBegin(); child != menu.childrenEnd(); ++child) {
    names.emplace_back((*child)->getName());
  }
  return names;
}

void addSongs(MenuNode& menu, const std::vector<std::string>& names) {
  for (const std::string& name : names) addMedia(menu, 0, name);
}

// The names that a menu's songs have once its tree is sorted.
std::vector<std::string> sortedUnder(std::string_view name, std::uint32_t recType,
                                     std::uint32_t nodeType = NODE_TYPE_MENU) {
  MenuTree tree;
  MenuNode& menu = addNode(*tree.getRoot(), nodeType, 0, name, recType);
  addSongs(menu, {"c", "a", "b"});
  MenuTree::sortTree(tree.getRoot());
  return namesOf(menu);
}

TEST(SortTree, SortsByRecType) {
  for (const std::uint32_t recType : {3U, 4U, 5U}) {
    EXPECT_THAT(sortedUnder("Any", recType), ElementsAre("a", "b", "c")) << recType;
  }
  for (const std::uint32_t recType : {0U, 1U, 2U, 6U, 7U, 11U, 12U, 13U, 259U, 0xFFFFFFFFU}) {
    EXPECT_THAT(sortedUnder("Any", recType), ElementsAre("c", "a", "b")) << recType;
  }
}

TEST(SortTree, SortsByName) {
  for (const char* const name : {"Artists", "Albums", "Geners", "Songs"}) {
    EXPECT_THAT(sortedUnder(name, 7), ElementsAre("a", "b", "c")) << name;
    EXPECT_THAT(sortedUnder(name, 6), ElementsAre("a", "b", "c")) << name;
  }
  for (const char* const name : {"Genres", "Playlists", "Favorites", "songs", "ARTISTS", "Album",
                                 "Songs ", "One Star", "root", ""}) {
    EXPECT_THAT(sortedUnder(name, 7), ElementsAre("c", "a", "b")) << name;
  }
}

TEST(SortTree, SortsWhateverTheNodeType) {
  EXPECT_THAT(sortedUnder("Songs", 7, 0), ElementsAre("a", "b", "c"));
  EXPECT_THAT(sortedUnder("Songs", 7, NODE_TYPE_MEDIA), ElementsAre("a", "b", "c"));
  EXPECT_THAT(sortedUnder("Any", 3, 99), ElementsAre("a", "b", "c"));
}

TEST(SortTree, KeepsTheOrderOfTheRootsChildren) {
  MenuTree tree;
  MenuNode& root = *tree.getRoot();
  const std::vector<std::string> categories{"Playlists", "Artists", "Albums",
                                            "Songs",     "Genres",  "Favorites"};
  for (const std::string& name : categories) addMenu(root, 0, name);
  MenuTree::sortTree(&root);
  EXPECT_EQ(namesOf(root), categories);

  root.setName("Songs");
  MenuTree::sortTree(&root);
  EXPECT_EQ(namesOf(root), categories);
}

TEST(SortTree, KeepsTheOrderOfGenresButSortsTheirSongs) {
  MenuTree tree;
  for (const char* const name : {"Genres", "Geners"}) {
    MenuNode& category = addMenu(*tree.getRoot(), 0, name);
    for (const char* const genre : {"Rock", "Jazz", "Blues"}) {
      addSongs(addMenu(category, 0, genre, RecType::kGenre), {"b", "a"});
    }
  }
  MenuTree::sortTree(tree.getRoot());
  const MenuNode& genres = *tree.getRoot()->childrenBegin()[0];
  const MenuNode& geners = *tree.getRoot()->childrenBegin()[1];
  EXPECT_THAT(namesOf(genres), ElementsAre("Rock", "Jazz", "Blues"));
  EXPECT_THAT(namesOf(geners), ElementsAre("Blues", "Jazz", "Rock"));
  EXPECT_THAT(namesOf(*genres.childrenBegin()[0]), ElementsAre("a", "b"));
}

TEST(SortTree, ComparesBytes) {
  MenuTree tree;
  MenuNode& songs = addMenu(*tree.getRoot(), 0, "Songs");
  addSongs(songs, {"abc", "Abd", "\xC3\xA9", "ab", std::string("ab\0", 3), "\x7F", ""});
  MenuTree::sortTree(tree.getRoot());
  EXPECT_THAT(namesOf(songs),
              ElementsAre("", "Abd", "ab", std::string("ab\0", 3), "abc", "\x7F", "\xC3\xA9"));
}

TEST(SortTree, ReachesEveryMenuButNotBeneathMedia) {
  MenuTree tree;
  MenuNode& plain = addMenu(*tree.getRoot(), 0, "Plain");
  MenuNode& album = addMenu(plain, 0, "Album", RecType::kAlbum);
  addSongs(album, {"b", "a"});
  MenuNode& media = addMedia(plain, 0, "Media");
  MenuNode& unreached = addMenu(media, 0, "Album", RecType::kAlbum);
  addSongs(unreached, {"b", "a"});
  MenuTree::sortTree(tree.getRoot());
  EXPECT_THAT(namesOf(plain), ElementsAre("Album", "Media"));
  EXPECT_THAT(namesOf(album), ElementsAre("a", "b"));
  EXPECT_THAT(namesOf(unreached), ElementsAre("b", "a"));
}

TEST(SortTree, OfANodeLeavesTheRestOfTheTree) {
  MenuTree tree;
  MenuNode& first = addMenu(*tree.getRoot(), 0, "Songs");
  MenuNode& second = addMenu(*tree.getRoot(), 0, "Other");
  MenuNode& inner = addMenu(second, 0, "Songs");
  addSongs(first, {"b", "a"});
  addSongs(inner, {"b", "a"});
  MenuTree::sortTree(&second);
  EXPECT_THAT(namesOf(first), ElementsAre("b", "a"));
  EXPECT_THAT(namesOf(inner), ElementsAre("a", "b"));
}

TEST(SortTree, TakesNull) {
  EXPECT_NO_FATAL_FAILURE(MenuTree::sortTree(nullptr));
}

TEST(SortTree, TakesAnyDepth) {
  MenuTree tree;
  MenuNode* menu = tree.getRoot();
  for (int i = 0; i < 100000; ++i) menu = &addMenu(*menu, 0, "Menu");
  MenuNode& songs = addMenu(*menu, 0, "Songs");
  addSongs(songs, {"b", "a"});
  MenuTree::sortTree(tree.getRoot());
  EXPECT_THAT(namesOf(songs), ElementsAre("a", "b"));
}

// Runs must repeat to the byte, so equal names have an order: that of std::sort by name alone.
TEST(SortTree, EqualNamesComeAsTheStandardSortLeavesThem) {
  for (std::uint32_t seed = 0; seed < 60; ++seed) {
    std::mt19937 random(seed);
    MenuTree tree;
    MenuNode& songs = addMenu(*tree.getRoot(), 0, "Songs");
    std::vector<std::pair<std::string, std::uint32_t>> expected;
    const std::uint32_t count = seed < 50 ? seed : 500 * (seed - 49);
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::string name = "song " + std::to_string(random() % (1 + seed % 7));
      addMedia(songs, i, name);
      expected.emplace_back(name, i);
    }
    std::sort(expected.begin(), expected.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    MenuTree::sortTree(tree.getRoot());
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(songs.childrenBegin()[i]->getMediaId(), expected[i].second) << seed << " " << i;
    }
  }
}

}  // namespace
}  // namespace Orvane::test
