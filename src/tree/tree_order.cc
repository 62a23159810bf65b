#include <algorithm>
#include <array>
#include <numeric>
#include <span>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/menu_tree.h"
#include "tree/name_bytes.h"
#include "tree/name_ranks.h"
#include "tree/parallel.h"
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

// Sorts children that are numbers of tracks by the ranks of the titles.
class RankSorter {
 public:
  explicit RankSorter(const NameRanks& ranks) : ranks_(&ranks) {}

  void sort(MenuNode& menu) {
    const std::span<std::uint32_t> tracks = menu.trackNumbers();
    ranked_.resize(tracks.size());
    std::transform(tracks.begin(), tracks.end(), ranked_.begin(), [this](std::uint32_t track) {
      return Ranked{(*ranks_)[track], track};
    });
    // Without equal names there is but one order, and it doesn't matter how it is found.
    if (ranked_.size() >= kWorthDistributing && allDiffer()) {
      distribute();
    } else {
      std::sort(ranked_.begin(), ranked_.end(),
                [](const Ranked& a, const Ranked& b) { return a.rank < b.rank; });
    }
    std::transform(ranked_.begin(), ranked_.end(), tracks.begin(),
                   [](const Ranked& entry) { return entry.track; });
  }

 private:
  struct Ranked {
    std::uint32_t rank;
    std::uint32_t track;
  };

  bool allDiffer() {
    isThere_.resize(ranks_->highest() + std::size_t{1});
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
    for (unsigned shift = 0; shift < 32 && ranks_->highest() >> shift != 0; shift += kDigitBits) {
      std::array<std::size_t, kDigits + 1> place{};
      const auto digit = [&](const Ranked& r) { return (r.rank >> shift) & (kDigits - 1); };
      for (const Ranked& r : ranked_) ++place[digit(r) + 1];
      std::partial_sum(place.begin(), place.end(), place.begin());
      for (const Ranked& r : ranked_) scratch_[place[digit(r)]++] = r;
      ranked_.swap(scratch_);
    }
  }

  static constexpr std::size_t kWorthDistributing = 4096;

  const NameRanks* ranks_;
  LargeVector<Ranked> ranked_;
  LargeVector<Ranked> scratch_;
  std::vector<bool> isThere_;  // by rank; false between uses
};

// Sorts children by name. Where all of them are numbers of tracks it compares the ranks of their
// titles instead: std::sort then takes the same decisions and so comes to the same order, at a
// fraction of the cost.
class ChildSorter {
 public:
  explicit ChildSorter(const TrackTable* tracks)
      : tracks_(tracks), isWanted_(tracks == nullptr ? 0 : tracks->size()) {}

  // Has to see all menus, before any is sorted.
  void add(MenuNode& menu) {
    for (const std::uint32_t track : menu.trackNumbers()) isWanted_[track] = true;
    menus_.push_back(&menu);
    childCount_ += menu.childCount();
  }

  void sortAll() {
    rankTitles();
    // The largest first, so that no worker is left with one at the end.
    std::sort(menus_.begin(), menus_.end(), [](const MenuNode* a, const MenuNode* b) {
      return a->childCount() > b->childCount();
    });
    std::vector<RankSorter> sorters(workersFor(childCount_), RankSorter(ranks_));
    forEachInParallel(menus_.size(), sorters.size(), [&](std::size_t i, std::size_t worker) {
      if (menus_[i]->trackNumbers().empty()) {
        sortByName(*menus_[i]);
      } else {
        sorters[worker].sort(*menus_[i]);
      }
    });
  }

 private:
  // Track after track, since that is how they and their titles stand in memory.
  void rankTitles() {
    const auto count = std::count(isWanted_.begin(), isWanted_.end(), true);
    if (count == 0) return;
    ranks_.reserve(static_cast<std::size_t>(count),
                   static_cast<std::uint32_t>(isWanted_.size() - 1));
    for (std::uint32_t track = 0; track < isWanted_.size(); ++track) {
      if (!isWanted_[track]) continue;
      ranks_.add(track, MenuNode::storedForm((*tracks_)[track]->getTitle()));
    }
    ranks_.rank();
  }

  // With the first bytes of each name at hand, few names have to be looked at.
  static void sortByName(MenuNode& menu) {
    struct Named {
      std::uint64_t bytes;
      MenuNode* node;
    };
    const MenuNode::Position children = menu.childrenBegin();
    LargeVector<Named> named;
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

  const TrackTable* tracks_;
  std::vector<bool> isWanted_;  // by track: the rank of its title is needed
  NameRanks ranks_;             // of titles, by track
  LargeVector<MenuNode*> menus_;
  std::size_t childCount_ = 0;  // of all of them
};

}  // namespace

void MenuTree::sortTree(MenuNode* node) {
  if (node == nullptr) return;
  ChildSorter sorter(node->getTrackTable());
  LargeVector<MenuNode*> menus = {node};
  while (!menus.empty()) {
    MenuNode& menu = *menus.back();
    menus.pop_back();
    if (!menu.trackNumbers().empty()) continue;
    for (auto place = menu.childrenBegin(); place != menu.childrenEnd(); ++place) {
      MenuNode& child = **place;
      if (child.childCount() == 0) continue;
      if (hasSortedChildren(child)) sorter.add(child);
      if (child.getNodeType() != NODE_TYPE_MEDIA) menus.push_back(&child);
    }
  }
  sorter.sortAll();
}

}  // namespace Orvane
