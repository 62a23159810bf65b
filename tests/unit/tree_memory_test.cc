// What has nothing beneath it, or nothing like it, takes no place among what is still to be done.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "allocation_probe.h"
#include "output/data_record_index.h"
#include "tree/menu_tree.h"
#include "tree/name_ranks.h"
#include "tree/track.h"

namespace Orvane::test {
namespace {

// The fewest allocations with which `work` comes to its end.
std::ptrdiff_t allocationsOf(const std::function<void()>& work) {
  for (std::ptrdiff_t allowed = 0;; ++allowed) {
    try {
      const LimitedAllocations limited(allowed);
      work();
      return allowed;
    } catch (const std::bad_alloc&) {
      continue;
    }
  }
}

void addEmptyMenus(MenuTree& tree, int count) {
  for (int i = 0; i < count; ++i) {
    tree.getRoot()->appendChild([](MenuNode& menu) { menu.setRecType(RecType::kAlbum); });
  }
}

TEST(TreeMemory, MenusWithoutChildrenAreNotSorted) {
  const auto sorting = [](int menus) {
    MenuTree tree;
    addEmptyMenus(tree, menus);
    return allocationsOf([&] { MenuTree::sortTree(tree.getRoot()); });
  };
  EXPECT_EQ(sorting(100), sorting(1));
}

TEST(TreeMemory, MenusWithoutChildrenAreNotSearched) {
  const auto searching = [](int menus) {
    const TrackTable tracks;
    MenuTree tree;
    tree.setTrackTable(tracks);
    addEmptyMenus(tree, menus);
    return allocationsOf([&] { const DataRecordIndex index(tree); });
  };
  EXPECT_EQ(searching(100), searching(1));
}

TEST(TreeMemory, NamesThatAreToldApartAreNotLookedAtAgain) {
  const auto ranking = [](std::uint32_t names) {
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < names; ++i) texts.push_back("a" + std::to_string(i));
    NameRanks ranks;
    const NameRanks::NameOf nameOf = [&](std::size_t i) -> std::string_view { return texts[i]; };
    return allocationsOf([&] { ranks.rank(names, nameOf); });
  };
  EXPECT_EQ(ranking(100), ranking(1));
}

TEST(TreeMemory, BeginningsThatNoNameHasAreNotRanked) {
  constexpr std::ptrdiff_t kAllBytes = 256;
  NameRanks ranks;
  const NameRanks::NameOf nameOf = [](std::size_t /*number*/) { return "a"; };
  EXPECT_LT(allocationsOf([&] { ranks.rank(1, nameOf); }), kAllBytes / 8);
}

}  // namespace
}  // namespace Orvane::test
