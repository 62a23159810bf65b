// The order in which both layouts put a tree into records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "output/inventory_format.h"
#include "tree/huge_pages.h"
#include "tree/menu_node.h"
#include "tree/prefetch.h"

namespace Orvane {

// Appends a record for every descendant of `node` to `table` and links the records: the children of
// a node stand together, followed by all descendants of its first child, then those of its second,
// and so on. Returns the index of the node's first child record, where its children would stand if
// it has none, or kNoChildren for a media leaf, whose children are never laid out.
//
// A Table offers:
//   std::uint32_t size() const;                       records so far
//   Link append(MenuNode& child);                     a record for `child`, linked to kNoChildren
//   void appendLeaves(std::span<const std::uint32_t> tracks);
//                                                     those of children that are tracks' numbers
//   void setFirstChild(Link, std::uint32_t index);    links that record to its children
//   bool isDeferred(const MenuNode& child) const;     see below
//   void expect(MenuNode& child, int step);           asks for what append(child) looks at, in
//                                                     four steps, each in time for the next; a
//                                                     Table must not rely on any of them
//   void expectLeaves(std::span<const std::uint32_t> tracks);
//                                                     the same for appendLeaves(tracks)
//
// The descendants of a deferred child come after those of all its siblings. Among several deferred
// siblings only the last is descended into; the others are linked to 0.
//
// Works with a stack of its own: menus may be nested as deep as memory allows.
template <typename Table>
std::uint32_t layoutFamilies(const MenuNode& node, Table& table) {
  constexpr std::uint32_t kNone = 0xFFFFFFFF;

  if (node.getNodeType() == NODE_TYPE_MEDIA) return kNoChildren;

  // A node's children whose own children are still to come, as places in `toVisit`.
  struct Family {
    std::size_t next;
    std::size_t end;
    std::size_t deferred;  // to be visited last, or kNone
  };
  struct Menu {
    const MenuNode* node;
    typename Table::Link link;
  };
  std::vector<Family> unfinished;
  LargeVector<Menu> toVisit;

  // Few menus that were just appended are visited next, too soon for expectFamilies.
  const auto expectFew = [&](std::size_t first) {
    constexpr std::size_t kFew = 8;
    const std::span<const Menu> menus = std::span(toVisit).subspan(first);
    if (menus.size() > kFew) return;
    for (const Menu& menu : menus) menu.node->expectChildren(0);
    for (const Menu& menu : menus) menu.node->expectChildren(1);
    for (const Menu& menu : menus) table.expectLeaves(menu.node->trackNumbers());
  };

  const auto appendFamily = [&](const MenuNode& parent) {
    const std::uint32_t base = table.size();
    if (parent.hasTrackNumbers()) {
      table.appendLeaves(parent.trackNumbers());
      return base;
    }
    const std::size_t first = toVisit.size();
    const auto child = [&](std::size_t i) -> MenuNode& { return *parent.childAt(i).node(); };
    const auto append = [&](std::size_t i) {
      MenuNode& menu = child(i);
      const typename Table::Link link = table.append(menu);
      if (menu.getNodeType() != NODE_TYPE_MEDIA || table.isDeferred(menu)) {
        toVisit.push_back({&menu, link});
      }
    };
    forEachPrefetched(
        parent.childCount(), append, [&](std::size_t i) { table.expect(child(i), 0); },
        [&](std::size_t i) { table.expect(child(i), 1); },
        [&](std::size_t i) { table.expect(child(i), 2); },
        [&](std::size_t i) { table.expect(child(i), 3); });
    unfinished.push_back({first, toVisit.size(), kNone});
    expectFew(first);
    return base;
  };

  // Menus are mostly too short for what they hold to be asked for while they are laid out: that is
  // done while the menus before them are.
  const auto expectFamilies = [&](std::size_t visited, std::size_t end) {
    const auto next = [&](std::size_t distance) -> const MenuNode& {
      return *toVisit[std::min(visited + distance, end - 1)].node;
    };
    const auto expectNodes = [&](const MenuNode& menu, int step) {
      constexpr std::size_t kFew = 4;
      if (menu.hasTrackNumbers()) return;
      for (std::size_t i = 0; i < std::min(menu.childCount(), kFew); ++i) {
        table.expect(*menu.childAt(i).node(), step);
      }
    };
    prefetch(&next(16));
    next(12).expectChildren(0);
    next(8).expectChildren(1);
    table.expectLeaves(next(4).trackNumbers());
    expectNodes(next(4), 0);
    expectNodes(next(2), 1);
    expectNodes(next(1), 2);
  };

  const std::uint32_t result = appendFamily(node);
  while (!unfinished.empty()) {
    Family& family = unfinished.back();
    std::size_t visited = family.next;
    if (family.next < family.end) {
      ++family.next;
      if (table.isDeferred(*toVisit[visited].node)) {
        family.deferred = visited;
        table.setFirstChild(toVisit[visited].link, 0);
        continue;
      }
    } else if (family.deferred != kNone) {
      visited = std::exchange(family.deferred, kNone);
    } else {
      unfinished.pop_back();
      toVisit.resize(unfinished.empty() ? 0 : unfinished.back().end);
      continue;
    }
    const Menu menu = toVisit[visited];
    expectFamilies(visited, family.end);
    const bool leaf = menu.node->getNodeType() == NODE_TYPE_MEDIA;
    table.setFirstChild(menu.link, leaf ? kNoChildren : appendFamily(*menu.node));
  }
  return result;
}

}  // namespace Orvane
