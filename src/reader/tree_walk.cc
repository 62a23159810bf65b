#include "reader/tree_walk.h"

#include <algorithm>

namespace Orvane {

TreeWalk::TreeWalk(const InventoryView& view, WalkOrder order, std::uint32_t start)
    : view_(view),
      order_(view.layout() == Layout::kTwoTable ? order : WalkOrder::kMenu),
      start_(start),
      parents_(view.recordCount(), kNoRecord),
      onPath_(view.recordCount() / 64 + 1, 0) {}

TreeWalk::Event TreeWalk::next() {
  if (visit_.record == kNoRecord) {
    if (start_ >= parents_.size() || parents_[start_] == kStart) return Event::kEnd;
    parents_[start_] = kStart;
    enter(start_);
    return Event::kEnter;
  }
  const std::uint32_t record = visit_.record;
  if (descend_) {
    if (order_ == WalkOrder::kStorage) noteDeferred(visit_);
    flipOnPath(record);
    ++depth_;
    moveTo(visit_.links.firstChildIndex, record);
    return Event::kEnter;
  }
  const std::uint32_t parent = parents_[record];
  if (parent == kStart) {
    visit_ = Visit{};
    return Event::kEnd;
  }
  if (!deferred_.empty() && deferred_.back().record == record) {
    deferred_.pop_back();
  } else if (moveTo(record + 1, parent)) {
    return Event::kEnter;
  }
  // All of the parent's children are done.
  flipOnPath(parent);
  visit_ = Visit{};
  visit_.record = parent;
  visit_.depth = --depth_;
  return Event::kLeave;
}

// Enters the first of `parent`'s children from `sibling` on that is due. In storage order that
// leaves the deferred one for the end.
bool TreeWalk::moveTo(std::uint32_t sibling, std::uint32_t parent) {
  const bool defers = !deferred_.empty() && deferred_.back().parent == parent;
  if (defers && sibling == deferred_.back().record) ++sibling;
  if (sibling < parents_.size() && parents_[sibling] == parent) {
    enter(sibling);
    return true;
  }
  if (defers) enter(deferred_.back().record);
  return defers;
}

void TreeWalk::enter(std::uint32_t record) {
  visit_ = Visit{};
  visit_.record = record;
  visit_.depth = depth_;
  visit_.links = view_.links(record);
  if (visit_.links.isLeaf() || visit_.links.childCount == 0) {
    descend_ = false;
    return;
  }
  claimChildren(visit_);
  descend_ = visit_.used != 0;
}

void TreeWalk::claimChildren(Visit& visit) {
  const std::uint32_t first = visit.links.firstChildIndex;
  if (first == 0 && hasLater(visit.record, &InventoryView::mayBePlaylistsMenu)) {
    visit.displaced = true;
    return;
  }
  const std::uint64_t end = std::uint64_t{first} + visit.links.childCount;
  std::uint64_t usableEnd = end;
  if (end > parents_.size()) {
    visit.outOfRange = true;
    // A cut-off file still has the first children of a range that was right. A range beyond the
    // stated count was never right, and would only take other menus' children.
    usableEnd = end <= view_.statedCount(0) ? parents_.size() : 0;
  }
  for (std::uint64_t i = first; i < usableEnd; ++i) {
    const auto child = static_cast<std::uint32_t>(i);
    std::uint32_t& parent = parents_[child];
    if (parent != kNoRecord) {
      visit.conflictRecord = child;
      if (child == visit.record || isOnPath(child)) {
        visit.conflict = Conflict::kCycle;
      } else {
        visit.conflict =
            view_.links(parent).firstChildIndex == first ? Conflict::kShared : Conflict::kOverlap;
      }
      return;
    }
    parent = visit.record;
    ++visit.used;
  }
}

bool TreeWalk::hasLaterPlaylists(std::uint32_t record) const {
  return hasLater(record, &InventoryView::isPlaylistsMenu);
}

// Siblings are looked at only up to the next such menu, so a whole family costs one pass.
bool TreeWalk::hasLater(std::uint32_t record,
                        bool (InventoryView::*isOne)(std::uint32_t) const) const {
  if (view_.layout() != Layout::kTwoTable || !(view_.*isOne)(record)) return false;
  const std::uint32_t parent = parents_[record];
  for (std::size_t i = std::size_t{record} + 1; i < parents_.size() && parents_[i] == parent; ++i) {
    if ((view_.*isOne)(static_cast<std::uint32_t>(i))) return true;
  }
  return false;
}

void TreeWalk::noteDeferred(const Visit& visit) {
  for (std::uint32_t i = visit.used; i-- > 0;) {
    const std::uint32_t child = visit.links.firstChildIndex + i;
    if (!view_.isPlaylistsMenu(child)) continue;
    deferred_.push_back({visit.record, child});
    return;
  }
}

}  // namespace Orvane
