#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "tree/huge_pages.h"
#include "tree/key_sort.h"
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

// Sorts children by name. Where they are numbers of tracks it compares the ranks of their titles
// instead, which comes to the same order at a fraction of the cost.
class ChildSorter {
 public:
  explicit ChildSorter(const TrackTable* tracks) : tracks_(tracks) {}
  ChildSorter(const ChildSorter&) = delete;
  ChildSorter& operator=(const ChildSorter&) = delete;
  ~ChildSorter() {
    forEachAwaited([](MenuNode& /*menu*/) {});
  }

  // Has to see all menus, before any is sorted.
  void add(MenuNode& menu) {
    const bool hasTwin = menu.hasTwin();
    if (hasTwin && menu.isMet()) {
      menu.setMet(false);
      --twinsAwaited_;
      return;
    }
    (menu.childCount() >= kLarge ? large_ : others_).push_back(&menu);
    childCount_ += menu.childCount();
    hasNumbers_ = hasNumbers_ || menu.hasTrackNumbers();
    if (!hasTwin) return;
    menu.setMet(true);
    ++twinsAwaited_;
  }

  void sortAll() {
    // A twin that isn't to be sorted keeps the order it has.
    forEachAwaited([](MenuNode& menu) { menu.partFromTwin(); });
    if (hasNumbers_) rankTitles();
    // The largest first, so that no worker is left with one at the end; the others as they stand in
    // memory.
    std::sort(large_.begin(), large_.end(), [](const MenuNode* a, const MenuNode* b) {
      return a->childCount() > b->childCount();
    });
    const std::size_t groups = (others_.size() + kGroup - 1) / kGroup;
    std::vector<LargeVector<Ranked>> scratch(workersFor(childCount_));
    forEachInParallel(
        large_.size() + groups, scratch.size(), [&](std::size_t i, std::size_t worker) {
          if (i < large_.size()) {
            sort(*large_[i], scratch[worker]);
          } else {
            const auto left = std::span(others_).subspan((i - large_.size()) * kGroup);
            sortGroup(left.first(std::min(kGroup, left.size())), scratch[worker]);
          }
        });
  }

 private:
  static constexpr std::size_t kLarge = 4096;
  static constexpr std::size_t kGroup = 256;

  struct Ranked {
    std::uint32_t rank;
    std::uint32_t track;
  };

  // Calls `use` with the menus whose twins haven't been met. None is awaited any more.
  template <typename Use>
  void forEachAwaited(Use use) {
    for (const auto* const menus : {&large_, &others_}) {
      for (auto menu = menus->begin(); twinsAwaited_ > 0 && menu != menus->end(); ++menu) {
        if (!(*menu)->isMet()) continue;
        (*menu)->setMet(false);
        --twinsAwaited_;
        use(**menu);
      }
    }
  }

  // All of them: hardly any track is in no menu that is sorted.
  void rankTitles() {
    ranks_.rank(tracks_->size(), [this](std::size_t number) {
      const Track* const track = (*tracks_)[number];  // there is none with number 0
      return track == nullptr ? "" : MenuNode::storedForm(track->getTitle());
    });
  }

  void sortGroup(std::span<MenuNode* const> menus, LargeVector<Ranked>& scratch) const {
    forEachPrefetched(
        menus.size(), [&](std::size_t i) { sort(*menus[i], scratch); },
        [&](std::size_t i) { prefetch(menus[i]); },
        [&](std::size_t i) { menus[i]->expectChildren(0); },
        [&](std::size_t i) { menus[i]->expectChildren(1); },
        [&](std::size_t i) {
          constexpr std::size_t kFew = 64;
          const std::span<const std::uint32_t> tracks = std::as_const(*menus[i]).trackNumbers();
          for (const std::uint32_t track : tracks.first(std::min(tracks.size(), kFew))) {
            ranks_.expect(track);
          }
        });
  }

  void sort(MenuNode& menu, LargeVector<Ranked>& scratch) const {
    if (menu.hasTrackNumbers()) {
      sortByRank(menu.trackNumbersOfTwins(), scratch);
    } else {
      sortByName(menu);
    }
  }

  void sortByRank(std::span<std::uint32_t> tracks, LargeVector<Ranked>& ranked) const {
    ranked.resize(tracks.size());
    std::transform(tracks.begin(), tracks.end(), ranked.begin(), [this](std::uint32_t track) {
      return Ranked{ranks_[track], track};
    });
    sortByKey(std::span(ranked), [](const Ranked& entry) { return entry.rank; });
    std::transform(ranked.begin(), ranked.end(), tracks.begin(),
                   [](const Ranked& entry) { return entry.track; });
  }

  // A child with the first bytes of its name, or, when there are many, with the name's rank.
  struct Named {
    std::uint64_t bytes;
    MenuNode* node;
  };

  static void replaceByRanks(std::span<Named> named) {
    NameRanks ranks;
    ranks.rank(named.size(), [&](std::size_t i) { return named[i].node->getName(); });
    std::uint32_t number = 0;
    for (Named& entry : named) entry.bytes = ranks[number++];
  }

  // With the first bytes of each name at hand, few names have to be looked at.
  static void sortByName(MenuNode& menu) {
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
    if (named.size() < kLarge) {
      std::sort(named.begin(), named.end(), [](const Named& a, const Named& b) {
        return a.bytes != b.bytes ? a.bytes < b.bytes : a.node->getName() < b.node->getName();
      });
    } else {
      replaceByRanks(named);
      sortByKey(std::span(named), [](const Named& entry) { return entry.bytes; });
    }
    std::transform(named.begin(), named.end(), children,
                   [](const Named& entry) { return entry.node; });
  }

  const TrackTable* tracks_;
  NameRanks ranks_;  // of titles, by track
  LargeVector<MenuNode*> large_;
  LargeVector<MenuNode*> others_;
  std::size_t childCount_ = 0;  // of all of them
  std::size_t twinsAwaited_ = 0;
  bool hasNumbers_ = false;
};

}  // namespace

void MenuTree::sortTree(MenuNode* node) {
  if (node == nullptr) return;
  ChildSorter sorter(node->getTrackTable());
  LargeVector<MenuNode*> menus = {node};
  while (!menus.empty()) {
    MenuNode& menu = *menus.back();
    menus.pop_back();
    if (menu.hasTrackNumbers()) continue;
    const auto pending = static_cast<std::ptrdiff_t>(menus.size());
    for (auto place = menu.childrenBegin(); place != menu.childrenEnd(); ++place) {
      MenuNode& child = **place;
      if (child.childCount() == 0) continue;
      if (hasSortedChildren(child)) sorter.add(child);
      if (child.getNodeType() != NODE_TYPE_MEDIA) menus.push_back(&child);
    }
    // The first child comes next: so all are met in the order in which they were made.
    std::reverse(menus.begin() + pending, menus.end());
  }
  sorter.sortAll();
}

}  // namespace Orvane
