#include "output/family_walk.h"

#include <algorithm>
#include <span>
#include <utility>

#include "output/inventory_format.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

MenuNode& childOf(const MenuNode& parent, std::size_t i) {
  return *parent.childAt(i).node();
}

bool isLeaf(const MenuNode& node) {
  return node.getNodeType() == NODE_TYPE_MEDIA;
}

}  // namespace

FamilyWalk::FamilyWalk(const MenuNode& node, std::uint32_t size, Rules rules)
    : rules_(rules), size_(size), parent_(&node) {}

bool FamilyWalk::take(std::vector<LayoutStep>& steps) {
  steps.clear();
  steps.reserve(kMostSteps);
  while (steps.size() < kMostSteps) {
    if (parent_ != nullptr) {
      takeChildren(steps);
    } else if (!visitNext(steps)) {
      break;
    }
  }
  return !steps.empty();
}

// As many of them as there is room for.
void FamilyWalk::takeChildren(std::vector<LayoutStep>& steps) {
  const MenuNode& parent = *parent_;
  if (parent.hasTrackNumbers()) {
    const std::span<const std::uint32_t> tracks = parent.trackNumbers();
    steps.push_back({.kind = LayoutStep::Kind::kLeaves, .tracks = tracks});
    size_ += static_cast<std::uint32_t>(tracks.size());
    parent_ = nullptr;
    return;
  }
  const std::size_t first = nextChild_;
  if (first == 0) firstToVisit_ = toVisit_.size();
  nextChild_ = std::min(parent.childCount(), first + kMostSteps - steps.size());
  forEachPrefetched(
      nextChild_ - first, [&](std::size_t i) { takeChild(childOf(parent, first + i), steps); },
      [&](std::size_t i) { prefetch(&childOf(parent, first + i)); },
      [&](std::size_t i) {
        childOf(parent, first + i).prefetchContent();
        childOf(parent, first + i).expectChildren(0);  // for their number
      });
  if (nextChild_ < parent.childCount()) return;
  unfinished_.push_back({firstToVisit_, toVisit_.size(), kNone});
  expectNewest();
  nextChild_ = 0;
  parent_ = nullptr;
}

void FamilyWalk::takeChild(MenuNode& child, std::vector<LayoutStep>& steps) {
  const bool isLinked = !isLeaf(child) || rules_.isDeferred(child);
  steps.push_back({.kind = LayoutStep::Kind::kNode,
                   .isLinked = isLinked,
                   .place = static_cast<std::uint32_t>(toVisit_.size()),
                   .node = &child,
                   .childCount = static_cast<std::uint32_t>(child.childCount()),
                   .hash = rules_.hashOf(child)});
  if (isLinked) toVisit_.push_back(&child);
  ++size_;
}

// Goes on to the next node whose children are still to come. False if there is none.
bool FamilyWalk::visitNext(std::vector<LayoutStep>& steps) {
  const auto link = [&](std::size_t place, std::uint32_t firstChild) {
    steps.push_back({.kind = LayoutStep::Kind::kFirstChild,
                     .place = static_cast<std::uint32_t>(place),
                     .firstChild = firstChild});
  };
  while (!unfinished_.empty()) {
    Family& family = unfinished_.back();
    std::size_t visited = family.next;
    if (family.next < family.end) {
      ++family.next;
      if (rules_.isDeferred(*toVisit_[visited])) {
        family.deferred = visited;
        link(visited, 0);
        return true;
      }
    } else if (family.deferred != kNone) {
      visited = std::exchange(family.deferred, kNone);
    } else {
      unfinished_.pop_back();
      toVisit_.resize(unfinished_.empty() ? 0 : unfinished_.back().end);
      continue;
    }
    expectFamilies(visited, family.end);
    MenuNode& node = *toVisit_[visited];
    link(visited, isLeaf(node) ? kNoChildren : size_);
    if (!isLeaf(node)) parent_ = &node;
    return true;
  }
  return false;
}

// Asks for what few menus hold that are visited next, too soon for expectFamilies.
void FamilyWalk::expectNewest() const {
  constexpr std::size_t kFew = 8;
  const std::span<MenuNode* const> menus = std::span(toVisit_).subspan(firstToVisit_);
  if (menus.size() > kFew) return;
  for (const MenuNode* menu : menus) menu->expectChildren(0);
  for (const MenuNode* menu : menus) menu->expectChildren(1);
}

// Menus are mostly too short for what they hold to be asked for while they are laid out: that is
// done while the menus before them are.
void FamilyWalk::expectFamilies(std::size_t visited, std::size_t end) const {
  const auto next = [&](std::size_t distance) -> const MenuNode& {
    return *toVisit_[std::min(visited + distance, end - 1)];
  };
  const auto expectNodes = [&](const MenuNode& menu, int step) {
    constexpr std::size_t kFew = 4;
    if (menu.hasTrackNumbers()) return;
    for (std::size_t i = 0; i < std::min(menu.childCount(), kFew); ++i) {
      if (step == 0) {
        prefetch(&childOf(menu, i));
      } else {
        childOf(menu, i).prefetchContent();
        childOf(menu, i).expectChildren(0);
      }
    }
  };
  prefetch(&next(32));
  next(24).expectChildren(0);
  next(12).expectChildren(1);
  expectNodes(next(4), 0);
  expectNodes(next(2), 1);
}

}  // namespace Orvane
