// Visits the records of an inventory as a menu tree, whatever the links in it say.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "reader/inventory_view.h"

namespace Orvane {

// In which order the children of one menu are descended into.
enum class WalkOrder : std::uint8_t {
  kMenu,     // as they stand: what a person sees
  kStorage,  // as the two-table layout stores them: the last "Playlists" menu after its siblings
};

// Visits every record that can be reached from a start record once, depth first, parents before
// children, without recursion. Links that cannot be true (a range outside the table, a record that
// another menu or an ancestor already holds) end a menu's children early and are reported with the
// menu; the walk goes on behind them. So it ends after at most recordCount() records and their
// leaving, for any bytes.
//
//   TreeWalk walk(view);
//   while (walk.next() != TreeWalk::Event::kEnd) ... walk.current() ...
//
// Uses four bytes and one bit per record of the file. Borrows the view's bytes.
class TreeWalk {
 public:
  enum class Event : std::uint8_t {
    kEnter,  // a record is visited
    kLeave,  // all children of a record have been; only for records with `used` != 0
    kEnd,    // the walk is over
  };

  // What is wrong with the range of records that a menu claims as its children.
  enum class Conflict : std::uint8_t {
    kNone,
    kCycle,    // it holds the menu itself or one of its ancestors
    kShared,   // it is, from its first record on, the range of another menu
    kOverlap,  // it runs into the range of another menu
  };

  struct Visit {
    std::uint32_t record = kNoRecord;
    std::uint32_t depth = 0;  // 0 for the start record
    RecordLinks links{0, 0, kNoRecord};
    std::uint32_t used = 0;   // children that the walk takes: the first `used` of the range
    bool displaced = false;   // an earlier "Playlists" sibling, whose contents are not stored
    bool outOfRange = false;  // the range is not wholly inside the table
    Conflict conflict = Conflict::kNone;
    std::uint32_t conflictRecord = kNoRecord;  // the child at which `conflict` shows
  };

  // Walks the subtree of `start`; over at once if there is no such record.
  explicit TreeWalk(const InventoryView& view, WalkOrder order = WalkOrder::kMenu,
                    std::uint32_t start = 0);

  Event next();

  // The visit that the last kEnter announced. After kLeave only `record` and `depth` are set.
  const Visit& current() const { return visit_; }

  // After kEnter: the children of the current record are not visited, and no kLeave follows.
  void skipChildren() { descend_ = false; }

  // For every record the one that claimed it as a child: kNoRecord if none has (so far), kStart for
  // the start record.
  std::span<const std::uint32_t> parents() const { return parents_; }
  static constexpr std::uint32_t kStart = kNoRecord - 1;

  // True for a "Playlists" menu of the two-table layout with a later sibling that is one too: that
  // layout stores the contents of the last one only. To be asked about a record that was visited.
  bool hasLaterPlaylists(std::uint32_t record) const;

  // Hands the parents over. Only after kEnd.
  std::vector<std::uint32_t> takeParents() { return std::move(parents_); }

 private:
  struct Deferred {
    std::uint32_t parent;
    std::uint32_t record;
  };

  bool hasLater(std::uint32_t record, bool (InventoryView::*isOne)(std::uint32_t) const) const;
  void enter(std::uint32_t record);
  void claimChildren(Visit& visit);
  void noteDeferred(const Visit& visit);
  bool moveTo(std::uint32_t sibling, std::uint32_t parent);
  bool isOnPath(std::uint32_t record) const {
    return (onPath_[record / 64] >> (record % 64) & 1) != 0;
  }
  void flipOnPath(std::uint32_t record) {
    onPath_[record / 64] ^= std::uint64_t{1} << (record % 64);
  }

  const InventoryView view_;
  const WalkOrder order_;
  const std::uint32_t start_;
  std::vector<std::uint32_t> parents_;
  std::vector<std::uint64_t> onPath_;  // records whose children are being visited
  std::vector<Deferred> deferred_;     // storage order: children to be entered last, by depth
  Visit visit_;
  std::uint32_t depth_ = 0;  // of the current record
  bool descend_ = false;     // into a record just entered; it has a child then
};

}  // namespace Orvane
