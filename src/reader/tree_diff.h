// How the menu trees of two inventories differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "reader/tree_index.h"

namespace Orvane {

enum class Change : std::uint8_t {
  kRemoved,    // a record of the first, with all below it
  kAdded,      // a record of the second, with all below it
  kMoved,      // under another menu; what is below it is compared as well
  kReordered,  // at another place among its siblings
  kChanged,    // other fields
};

// Bits that tell which fields of two matching records differ.
enum DifferingField : std::uint8_t {
  kDiffersInKind = 1,  // media leaf or menu
  kDiffersInMediaId = 2,
  kDiffersInRecType = 4,
  kDiffersInRating = 8,
  kDiffersInAttribMask = 16,
  kDiffersInChildCount = 32,  // of children that are not stored
  kDiffersInNameTail = 64,    // bytes behind the name's terminator
};

struct Difference {
  Change change;
  std::uint32_t first = kNoRecord;   // record of the first inventory, if any
  std::uint32_t second = kNoRecord;  // record of the second inventory, if any
  std::uint8_t fields = 0;           // kChanged: of DifferingField
  bool shared = false;               // kChanged: one of the two shows what another record brought
};

// Records match by menu path and name: the roots do, and children of matching menus with the same
// name, those with the same id first, in their order. What then has no match on one side matches a
// record of the same name and id on the other and counts as moved. Record numbers and the
// layout play no part. Where one inventory does not store a menu's contents (see
// TreeIndex::isDisplaced), only the child counts are compared.
//
// Time n log n for n records; memory for each difference and about eight bytes per record.
class TreeDiff {
 public:
  // Both are borrowed.
  TreeDiff(const TreeIndex& first, const TreeIndex& second);

  // All differences, menu by menu, what is in a menu after the menu itself.
  std::vector<Difference> run();

 private:
  using Pair = std::pair<std::uint32_t, std::uint32_t>;
  // Records without a partner by name and id, as their places in differences_ in the order in which
  // they came up.
  using LeftOvers = std::map<std::pair<std::string_view, std::uint32_t>, std::deque<std::size_t>>;

  static std::vector<std::uint64_t> findOwners(const InventoryView& view);
  void compare(Pair pair);
  void compareFields(Pair pair);
  void compareFamilies(Pair pair);
  bool matchAlike(TreeIndex::Family first, TreeIndex::Family second);
  void match(TreeIndex::Family first, TreeIndex::Family second);
  void reportOrder(std::vector<Pair>& pairs);
  void addLeftOver(Change change, std::uint32_t record);

  const TreeIndex& first_;
  const TreeIndex& second_;
  std::vector<std::uint64_t> firstOwners_;  // bit per record: it brought its item itself
  std::vector<std::uint64_t> secondOwners_;
  LeftOvers removed_;
  LeftOvers added_;
  std::vector<Pair> pending_;  // matching records yet to be compared
  std::vector<Difference> differences_;
};

}  // namespace Orvane
