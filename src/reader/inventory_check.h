// All that a check of an inventory says, and the only place where it is decided.
#pragma once

#include <cstdint>
#include <vector>

#include "reader/finding.h"
#include "reader/inventory_view.h"
#include "reader/tree_walk.h"

namespace Orvane {

// Checks an inventory alongside a walk over it, so that a printer shows damage in place:
//
//   check.framing();
//   for each visit of a walk: check.visit(visit, walk.parents());
//   check.remainder(walk.parents());     only after a complete walk from the root
//
// or all of it at once with run(). Findings go to the sink as they come up. Uses one bit per data
// record. Borrows the view's bytes and the sink.
class InventoryCheck {
 public:
  InventoryCheck(const InventoryView& view, FindingSink& sink);

  void framing();
  void visit(const TreeWalk::Visit& visit, std::span<const std::uint32_t> parents) {
    if (visit.outOfRange) reportRange(visit);
    if (visit.conflict != TreeWalk::Conflict::kNone) reportConflict(visit, parents);
    const std::uint32_t dataIndex = visit.links.dataIndex;
    if (dataIndex >= view_.dataCount()) {
      reportDataIndex(visit);
      return;
    }
    std::uint64_t& word = dataUsed_[dataIndex / 64];
    const std::uint64_t bit = std::uint64_t{1} << (dataIndex % 64);
    if ((word & bit) != 0) return;  // its item has been looked at with the first record to use it
    word |= bit;
    item(visit, view_.item(dataIndex));
  }
  void remainder(std::span<const std::uint32_t> parents);

  // Walks the whole inventory. `walk` must be fresh and start at the root; its parents() tell where
  // the records of the findings stand, also while the sink is being called.
  void run(TreeWalk& walk);

  // Findings so far, whatever the sink made of them.
  std::uint64_t count() const { return count_; }

 private:
  void report(const Finding& finding);
  void reportRange(const TreeWalk::Visit& visit);
  void reportConflict(const TreeWalk::Visit& visit, std::span<const std::uint32_t> parents);
  void item(const TreeWalk::Visit& visit, ItemView found);
  void reportDataIndex(const TreeWalk::Visit& visit);
  Finding about(Rule rule, std::uint32_t record) const;

  const InventoryView view_;
  FindingSink& sink_;
  std::vector<std::uint64_t> dataUsed_;
  // Of the data records in use that are cut off, which all behind the readable ones are.
  std::uint32_t firstCutOff_ = kNoRecord;
  std::uint32_t lastCutOff_ = 0;
  std::uint64_t count_ = 0;
};

}  // namespace Orvane
