// Menus of many songs, whose titles may be equal.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/menu_builder.h"
#include "seeded_random.h"
#include "test_support.h"
#include "track_lists.h"

namespace Orvane::test {
namespace {

struct Song {
  std::string title;
  std::uint32_t mediaId;
};

// The songs of the tree's menu, once in the order of sortTree, and in that of std::sort by title.
void expectSorted(const std::vector<Song>& songs, MenuTree& tree) {
  MenuTree::sortTree(tree.getRoot());
  MenuNode::Position menu = nullptr;
  ASSERT_TRUE(tree.getRoot()->findChildByName(menu, "Songs"));

  // By pointer: the algorithm's choices among equal titles must not depend on what is moved.
  std::vector<const Song*> expected;
  for (const Song& song : songs) expected.push_back(&song);
  std::sort(expected.begin(), expected.end(),
            [](const Song* a, const Song* b) { return a->title < b->title; });
  ASSERT_EQ((*menu)->childCount(), expected.size());
  auto leaf = (*menu)->childrenBegin();
  for (const Song* const song : expected) {
    ASSERT_EQ((*leaf)->getMediaId(), song->mediaId);
    ++leaf;
  }
}

// Leaves that are numbers of tracks, then leaves that are nodes.
void expectSorted(const std::vector<Song>& songs) {
  {
    TrackManager manager;
    for (const Song& song : songs) addSong(manager, song.mediaId, song.title);
    MenuTree tree;
    buildMenuFromInventory(manager, tree);
    expectSorted(songs, tree);
  }
  MenuTree tree;
  MenuNode& menu = addMenu(*tree.getRoot(), 0, "Songs");
  for (const Song& song : songs) addMedia(menu, song.mediaId, song.title);
  expectSorted(songs, tree);
}

// `count` songs in random order; `titles` songs in turn have titles of their own.
std::vector<Song> songs(std::uint32_t count, std::uint32_t titles) {
  std::vector<Song> result;
  for (std::uint32_t i = 0; i < count; ++i) {
    result.push_back({"Title " + std::to_string(i % titles), i + 1});
  }
  std::shuffle(result.begin(), result.end(), seededRandom(count));
  return result;
}

TEST(LargeMenuOrder, AllTitlesDifferent) {
  for (const std::uint32_t count : {4095U, 4096U, 4097U, 10'000U}) {
    SCOPED_TRACE(count);
    expectSorted(songs(count, count));
  }
}

TEST(LargeMenuOrder, TwoTitlesEqual) {
  expectSorted(songs(5'000, 4'999));
}

TEST(LargeMenuOrder, ManyTitlesEqual) {
  expectSorted(songs(5'000, 17));
  expectSorted(songs(5'000, 1));
}

}  // namespace
}  // namespace Orvane::test
