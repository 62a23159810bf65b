#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/menu_tree.h"
#include "tree/name_bytes.h"
#include "tree/name_ranks.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

// "Geners" is no slip to mend: the category is called "Genres", so its genres keep the order that
// the builder gave them, as in all existing inventories. Their songs are sorted through their
// recType.
bool hasSortedChildren(const MenuNode& menu) {
  const std::uint32_t recType = menu.getRecType();
  if (recType == RecType::kAlbum || recType == RecType::kArtist || recType == RecType::kGenre) {
    return true;
  }
  const std::string_view name = menu.getName();
  return name == "Artists" || name == "Albums" || name == "Geners" || name == "Songs";
}

// Sorts children by name. Where all of them are numbers of tracks it compares the ranks of their
// titles instead: std::sort then takes the same decisions and so comes to the same order, at a
// fraction of the cost.
class ChildSorter {
 public:
  explicit ChildSorter(const TrackTable* tracks) : tracks_(tracks) {}

  // Has to see all menus, before any is sorted.
  void add(MenuNode& menu) {
    bool ranked = true;
    for (std::size_t i = 0; i < menu.childCount(); ++i) {
      const Child child = menu.childAt(i);
      ranked = ranked && !child.isNode();
      if (!child.isNode()) rankTitle(child.trackNumber());
    }
    menus_.push_back({&menu, ranked});
  }

  void sortAll() {
    ranks_.rank();
    for (const Menu& menu : menus_) {
      if (menu.isRanked) {
        sortByRank(*menu.node);
      } else {
        sortByName(*menu.node);
      }
    }
  }

 private:
  struct Menu {
    MenuNode* node;
    bool isRanked;
  };

  struct Ranked {
    std::uint32_t rank;
    std::uint32_t track;
  };
  using Sequence = std::vector<Ranked, LargeAllocator<Ranked>>;

  void rankTitle(std::uint32_t track) {
    if (ranks_.knows(track)) return;
    ranks_.add(track, MenuNode::storedForm((*tracks_)[track]->getTitle()));
  }

  // With the first bytes of each name at hand, few names have to be looked at.
  static void sortByName(MenuNode& menu) {
    struct Named {
      std::uint64_t bytes;
      MenuNode* node;
    };
    const MenuNode::Position children = menu.childrenBegin();
    std::vector<Named, LargeAllocator<Named>> named;
    named.reserve(menu.childCount());
    forEachPrefetched(
        menu.childCount(),
        [&](std::size_t i) {
          named.push_back({nameBytesAt(children[i]->getName(), 0), children[i]});
        },
        [&](std::size_t i) { prefetch(children[i]); },
        [&](std::size_t i) { children[i]->prefetchContent(); });
    std::sort(named.begin(), named.end(), [](const Named& a, const Named& b) {
      return a.bytes != b.bytes ? a.bytes < b.bytes : a.node->getName() < b.node->getName();
    });
    std::transform(named.begin(), named.end(), children,
                   [](const Named& entry) { return entry.node; });
  }

  void sortByRank(MenuNode& menu) {
    ranked_.resize(menu.childCount());
    for (std::size_t i = 0; i < ranked_.size(); ++i) {
      const std::uint32_t track = menu.childAt(i).trackNumber();
      ranked_[i] = {ranks_[track], track};
    }
    // Without equal names there is but one order, and it doesn't matter how it is found.
    if (ranked_.size() >= kWorthDistributing && allDiffer()) {
      distribute();
    } else {
      std::sort(ranked_.begin(), ranked_.end(),
                [](const Ranked& a, const Ranked& b) { return a.rank < b.rank; });
    }
    for (std::size_t i = 0; i < ranked_.size(); ++i) {
      menu.setChildAt(i, Child::ofTrack(ranked_[i].track));
    }
  }

  bool allDiffer() {
    isThere_.resize(ranks_.highest() + std::size_t{1});
    std::size_t different = 0;
    while (different < ranked_.size() && !isThere_[ranked_[different].rank]) {
      isThere_[ranked_[different++].rank] = true;
    }
    for (std::size_t i = 0; i < different; ++i) isThere_[ranked_[i].rank] = false;
    return different == ranked_.size();
  }

  // Radix sort, from the lowest digit up.
  void distribute() {
    constexpr unsigned kDigitBits = 11;
    constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
    scratch_.resize(ranked_.size());
    for (unsigned shift = 0; shift < 32 && ranks_.highest() >> shift != 0; shift += kDigitBits) {
      std::array<std::size_t, kDigits + 1> place{};
      const auto digit = [&](const Ranked& r) { return (r.rank >> shift) & (kDigits - 1); };
      for (const Ranked& r : ranked_) ++place[digit(r) + 1];
      std::partial_sum(place.begin(), place.end(), place.begin());
      for (const Ranked& r : ranked_) scratch_[place[digit(r)]++] = r;
      ranked_.swap(scratch_);
    }
  }

  static constexpr std::size_t kWorthDistributing = 4096;

  const TrackTable* tracks_;
  NameRanks ranks_;  // of titles, by track
  std::vector<Menu> menus_;
  Sequence ranked_;
  Sequence scratch_;
  std::vector<bool> isThere_;  // by rank; false between uses
};

}  // namespace

void MenuTree::sortTree(MenuNode* node) {
  if (node == nullptr) return;
  ChildSorter sorter(node->getTrackTable());
  std::vector<MenuNode*> menus = {node};
  while (!menus.empty()) {
    MenuNode& menu = *menus.back();
    menus.pop_back();
    for (std::size_t i = 0; i < menu.childCount(); ++i) {
      if (!menu.childAt(i).isNode()) continue;
      MenuNode& child = *menu.childAt(i).node();
      if (child.childCount() == 0) continue;
      if (hasSortedChildren(child)) sorter.add(child);
      if (child.getNodeType() != NODE_TYPE_MEDIA) menus.push_back(&child);
    }
  }
  sorter.sortAll();
}

}  // namespace Orvane
