#include "reader/inventory_stats.h"

#include <algorithm>
#include <bit>

#include "reader/node_kind.h"

namespace Orvane {
namespace {

constexpr std::array<std::string_view, InventoryStats::kKinds> kNames = {
    "media",    "menu",     "album",     "artist",     "genre",
    "playlist", "one-star", "two-stars", "three-stars"};

std::uint8_t kindIndex(std::string_view kind) {
  const auto* found = std::find(kNames.begin(), kNames.end(), kind);
  return static_cast<std::uint8_t>(found - kNames.begin());
}

class Collector {
 public:
  explicit Collector(const InventoryView& view) : menuKinds_(view.dataCount()) {
    std::array<std::uint8_t, 256> kinds{};
    for (std::size_t recType = 0; recType < kinds.size(); ++recType) {
      kinds[recType] = kindIndex(kindOf(false, static_cast<std::uint8_t>(recType)));
    }
    // Records come in an order of their own: looking each one's item up would miss every cache, so
    // the one byte of it that matters is set out beforehand.
    for (std::uint32_t i = 0; i < view.dataCount(); ++i) {
      const ItemView item = view.item(i);
      menuKinds_[i] = kinds[item.recType()];
      ++stats_.byNameLength[item.name().size()];
    }
  }

  void count(const TreeWalk::Visit& visit) {
    ++stats_.reached;
    if (visit.depth > stats_.depth || stats_.deepest == kNoRecord) {
      stats_.depth = visit.depth;
      stats_.deepest = visit.record;
    }
    if (visit.links.isLeaf()) {
      ++stats_.leaves;
      if (visit.links.childCount != 0) ++stats_.leavesWithCount;
      return;
    }
    const std::uint32_t dataIndex = visit.links.dataIndex;
    const std::size_t kind = dataIndex < menuKinds_.size() ? menuKinds_[dataIndex] : kMenu;
    ++stats_.byKind[kind];
    if (visit.displaced) ++stats_.displaced;
    const std::uint32_t children = visit.links.childCount;
    ++stats_.byFanOut[static_cast<std::size_t>(std::bit_width(children))];
    stats_.childrenInMenus += children;
    addWide({visit.record, children});
  }

  InventoryStats finish() {
    stats_.byKind[0] = stats_.leaves;
    return std::move(stats_);
  }

 private:
  static constexpr std::size_t kMenu = 1;

  void addWide(InventoryStats::Menu menu) {
    if (menu.children == 0) return;
    auto& widest = stats_.widest;
    const auto place = std::find_if(widest.begin(), widest.end(), [&](const auto& other) {
      return other.children < menu.children;
    });
    widest.insert(place, menu);
    if (widest.size() > InventoryStats::kWidest) widest.pop_back();
  }

  std::vector<std::uint8_t> menuKinds_;
  InventoryStats stats_;
};

}  // namespace

std::string_view InventoryStats::kindName(std::size_t kind) {
  return kNames[kind];
}

InventoryStats collectStats(const InventoryView& view, TreeWalk& walk, InventoryCheck& check) {
  Collector collector(view);
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event != TreeWalk::Event::kEnter) continue;
    collector.count(walk.current());
    check.visit(walk.current(), walk.parents());
  }
  check.remainder(walk.parents());
  return collector.finish();
}

}  // namespace Orvane
