// Names and ids that differ although their hashes are equal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "inventory/menu_builder.h"
#include "output/two_table_writer.h"
#include "recording_buffer.h"
#include "test_support.h"
#include "tree/position_index.h"
#include "two_tables.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

struct Named {
  std::string name;
  std::uint32_t id;
};

struct Pair {
  Named first;
  Named second;
};

enum class Differing { kNames, kIds, kBoth };

// Two that have the same hash.
Pair findPair(Differing differing) {
  std::unordered_map<std::uint32_t, Named> known;
  for (std::uint32_t i = 0; i < 4'000'000; ++i) {
    Named named{differing == Differing::kIds ? "name" : "n" + std::to_string(i),
                differing == Differing::kNames ? 1 : i};
    const std::uint32_t hash = hashNameAndId(named.name, named.id);
    const auto [other, isNew] = known.try_emplace(hash, named);
    if (!isNew) return {other->second, std::move(named)};
  }
  throw std::runtime_error("no two hashes are equal");
}

void addAlbum(TrackManager& manager, const Named& album, std::uint32_t artistId = 0) {
  static std::uint32_t mediaId = 0;
  manager.addTrack("t", ++mediaId, "artist", artistId, album.name, album.id, "", 0, 0);
}

// The names of the menus beneath a category, or beneath its only menu, and how much they hold.
std::vector<std::string> childrenOf(const TrackManager& manager, std::string_view category,
                                    bool beneathMenu = false) {
  MenuTree tree;
  buildMenuFromInventory(manager, tree);
  MenuNode::Position menu = nullptr;
  EXPECT_TRUE(tree.getRoot()->findChildByName(menu, category));
  const MenuNode& parent = beneathMenu ? **(*menu)->childrenBegin() : **menu;
  std::vector<std::string> names;
  for (auto child = parent.childrenBegin(); child != parent.childrenEnd(); ++child) {
    names.push_back(std::string((*child)->getName()) + " " +
                    std::to_string((*child)->childCount()));
  }
  return names;
}

class EqualHashes : public ::testing::TestWithParam<Differing> {
 protected:
  const Pair pair_ = findPair(GetParam());
};

TEST_P(EqualHashes, DataRecordsAreToldApart) {
  MenuTree tree;
  for (const Named& item : {pair_.first, pair_.second, pair_.first}) {
    addMedia(*tree.getRoot(), item.id, item.name);
  }
  RecordingBuffer buffer;
  writeTwoTable(tree, buffer);
  const Tables tables(buffer.content);
  EXPECT_THAT(tables.treeNames(),
              ElementsAre("root", pair_.first.name, pair_.second.name, pair_.first.name));
  EXPECT_EQ(tables.data.size(), 3U);
}

TEST_P(EqualHashes, AlbumsOfAnArtistAreToldApart) {
  TrackManager manager;
  for (const Named& album : {pair_.first, pair_.second, pair_.first}) addAlbum(manager, album, 1);
  EXPECT_THAT(childrenOf(manager, "Artists", true),
              ElementsAre(pair_.first.name + " 2", pair_.second.name + " 1"));
}

TEST(EqualHashesOfAlbums, DifferentIdsAreToldApart) {
  for (const Differing differing : {Differing::kIds, Differing::kBoth}) {
    const Pair pair = findPair(differing);
    TrackManager manager;
    for (const Named& album : {pair.first, pair.second, pair.first}) addAlbum(manager, album);
    EXPECT_THAT(childrenOf(manager, "Albums"),
                ::testing::UnorderedElementsAre(pair.first.name + " 2", pair.second.name + " 1"));
  }
}

// One album, renamed while another one stands between its two names, has two runs of tracks.
TEST(EqualHashesOfAlbums, DifferentNamesAreToldApart) {
  const Pair pair = findPair(Differing::kNames);
  const std::string first = std::min(pair.first.name, pair.second.name);
  const std::string last = std::max(pair.first.name, pair.second.name);
  TrackManager manager;
  for (const Named& album : {Named{first, 1}, Named{first + " ", 2}, Named{last, 1}}) {
    addAlbum(manager, album);
  }
  EXPECT_THAT(childrenOf(manager, "Albums"), ElementsAre(first + " 1", first + "  1", last + " 1"));
}

INSTANTIATE_TEST_SUITE_P(Of, EqualHashes,
                         ::testing::Values(Differing::kNames, Differing::kIds, Differing::kBoth),
                         [](const auto& tested) {
                           if (tested.param == Differing::kBoth) return "NamesAndIds";
                           return tested.param == Differing::kNames ? "Names" : "Ids";
                         });

}  // namespace
}  // namespace Orvane::test
