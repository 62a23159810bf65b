#include "reader/tree_diff.h"

#include <algorithm>
#include <compare>
#include <span>
#include <string_view>

namespace Orvane {
namespace {

// What records are matched by: name and media id.
using Key = std::pair<std::string_view, std::uint32_t>;

Key keyOf(const InventoryView& view, std::uint32_t record) {
  const ItemView item = view.itemOf(record);
  return {item.name(), item.mediaId()};
}

struct ByKey {
  const InventoryView& view;
  bool operator()(std::uint32_t a, std::uint32_t b) const {
    return std::pair(keyOf(view, a), a) < std::pair(keyOf(view, b), b);
  }
};

// Pairs off what is equal in two lists that are sorted by key, the first with the first, and leaves
// in the lists what has no partner.
template <typename Compare>
void pairOff(std::vector<std::uint32_t>& first, std::vector<std::uint32_t>& second,
             const Compare& compare, std::vector<std::pair<std::uint32_t, std::uint32_t>>& pairs) {
  std::vector<std::uint32_t> firstLeft;
  std::vector<std::uint32_t> secondLeft;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < first.size() && j < second.size()) {
    const auto order = compare(first[i], second[j]);
    if (std::is_eq(order)) {
      pairs.emplace_back(first[i++], second[j++]);
    } else if (std::is_lt(order)) {
      firstLeft.push_back(first[i++]);
    } else {
      secondLeft.push_back(second[j++]);
    }
  }
  firstLeft.insert(firstLeft.end(), first.begin() + static_cast<std::ptrdiff_t>(i), first.end());
  secondLeft.insert(secondLeft.end(), second.begin() + static_cast<std::ptrdiff_t>(j),
                    second.end());
  first = std::move(firstLeft);
  second = std::move(secondLeft);
}

std::vector<std::uint32_t> listOf(TreeIndex::Family family) {
  std::vector<std::uint32_t> list(family.count);
  for (std::uint32_t i = 0; i < family.count; ++i) list[i] = family.first + i;
  return list;
}

// Marks a longest ascending run of the second numbers of `pairs`: those that need not have moved.
std::vector<bool> ascending(std::span<const std::pair<std::uint32_t, std::uint32_t>> pairs) {
  std::vector<std::size_t> ends;  // ends[k]: where the best run of k + 1 numbers ends
  std::vector<std::size_t> before(pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const auto place = std::lower_bound(
        ends.begin(), ends.end(), pairs[i].second,
        [&](std::size_t end, std::uint32_t value) { return pairs[end].second < value; });
    before[i] = place == ends.begin() ? pairs.size() : *(place - 1);
    if (place == ends.end()) {
      ends.push_back(i);
    } else {
      *place = i;
    }
  }
  std::vector<bool> kept(pairs.size(), false);
  if (ends.empty()) return kept;
  for (std::size_t i = ends.back(); i < pairs.size(); i = before[i]) kept[i] = true;
  return kept;
}

}  // namespace

TreeDiff::TreeDiff(const TreeIndex& first, const TreeIndex& second)
    : first_(first),
      second_(second),
      firstOwners_(findOwners(first.view())),
      secondOwners_(findOwners(second.view())) {}

std::vector<std::uint64_t> TreeDiff::findOwners(const InventoryView& view) {
  std::vector<std::uint64_t> owners(view.recordCount() / 64 + 1, 0);
  std::vector<bool> used(view.dataCount(), false);
  for (std::uint32_t i = 0; i < view.recordCount(); ++i) {
    const std::uint32_t dataIndex = view.links(i).dataIndex;
    if (dataIndex >= used.size() || used[dataIndex]) continue;
    used[dataIndex] = true;
    owners[i / 64] |= std::uint64_t{1} << (i % 64);
  }
  return owners;
}

std::vector<Difference> TreeDiff::run() {
  const bool firstEmpty = first_.view().recordCount() == 0;
  const bool secondEmpty = second_.view().recordCount() == 0;
  if (firstEmpty && secondEmpty) return {};
  if (firstEmpty) return {{.change = Change::kAdded, .second = 0}};
  if (secondEmpty) return {{.change = Change::kRemoved, .first = 0}};

  if (first_.view().itemOf(0).name() != second_.view().itemOf(0).name()) {
    differences_.push_back({.change = Change::kMoved, .first = 0, .second = 0});
  }
  pending_.emplace_back(0, 0);
  while (!pending_.empty()) {
    const Pair pair = pending_.back();
    pending_.pop_back();
    compare(pair);
  }
  return std::move(differences_);
}

void TreeDiff::compare(Pair pair) {
  compareFields(pair);
  if (first_.isDisplaced(pair.first) || second_.isDisplaced(pair.second)) return;
  compareFamilies(pair);
}

void TreeDiff::compareFields(Pair pair) {
  const RecordLinks a = first_.view().links(pair.first);
  const RecordLinks b = second_.view().links(pair.second);
  const ItemView left = first_.view().item(a.dataIndex);
  const ItemView right = second_.view().item(b.dataIndex);
  unsigned fields = 0;
  const bool displaced = first_.isDisplaced(pair.first) || second_.isDisplaced(pair.second);
  if (a.isLeaf() != b.isLeaf() && !displaced) fields |= kDiffersInKind;
  if (left.mediaId() != right.mediaId()) fields |= kDiffersInMediaId;
  if (left.recType() != right.recType()) fields |= kDiffersInRecType;
  if (left.rating() != right.rating()) fields |= kDiffersInRating;
  if (left.attribMask() != right.attribMask()) fields |= kDiffersInAttribMask;
  const bool hidden = (a.isLeaf() && b.isLeaf()) || displaced;
  if (hidden && a.childCount != b.childCount) fields |= kDiffersInChildCount;
  if (left.name() == right.name() && left.nameField() != right.nameField()) {
    fields |= kDiffersInNameTail;
  }
  if (fields == 0) return;
  const auto owns = [](const std::vector<std::uint64_t>& owners, std::uint32_t record) {
    return (owners[record / 64] >> (record % 64) & 1) != 0;
  };
  Difference difference{.change = Change::kChanged, .first = pair.first, .second = pair.second};
  difference.fields = static_cast<std::uint8_t>(fields);
  difference.shared = !owns(firstOwners_, pair.first) || !owns(secondOwners_, pair.second);
  differences_.push_back(difference);
}

void TreeDiff::compareFamilies(Pair pair) {
  const TreeIndex::Family first = first_.children(pair.first);
  const TreeIndex::Family second = second_.children(pair.second);
  if (!matchAlike(first, second)) match(first, second);
}

// The usual case: the same children in the same order.
bool TreeDiff::matchAlike(TreeIndex::Family first, TreeIndex::Family second) {
  if (first.count != second.count) return false;
  for (std::uint32_t i = 0; i < first.count; ++i) {
    if (keyOf(first_.view(), first.first + i) != keyOf(second_.view(), second.first + i)) {
      return false;
    }
  }
  // The last one pushed is compared first.
  for (std::uint32_t i = first.count; i-- > 0;) {
    pending_.emplace_back(first.first + i, second.first + i);
  }
  return true;
}

void TreeDiff::match(TreeIndex::Family first, TreeIndex::Family second) {
  const InventoryView& left = first_.view();
  const InventoryView& right = second_.view();
  std::vector<std::uint32_t> removed = listOf(first);
  std::vector<std::uint32_t> added = listOf(second);
  std::sort(removed.begin(), removed.end(), ByKey{left});
  std::sort(added.begin(), added.end(), ByKey{right});
  std::vector<Pair> pairs;
  pairOff(
      removed, added,
      [&](std::uint32_t a, std::uint32_t b) { return keyOf(left, a) <=> keyOf(right, b); }, pairs);
  pairOff(
      removed, added,
      [&](std::uint32_t a, std::uint32_t b) {
        return keyOf(left, a).first <=> keyOf(right, b).first;
      },
      pairs);
  std::sort(removed.begin(), removed.end());
  std::sort(added.begin(), added.end());
  for (const std::uint32_t record : removed) addLeftOver(Change::kRemoved, record);
  for (const std::uint32_t record : added) addLeftOver(Change::kAdded, record);
  std::sort(pairs.begin(), pairs.end());
  reportOrder(pairs);
  pending_.insert(pending_.end(), pairs.rbegin(), pairs.rend());
}

void TreeDiff::reportOrder(std::vector<Pair>& pairs) {
  const std::vector<bool> kept = ascending(pairs);
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (kept[i]) continue;
    differences_.push_back(
        {.change = Change::kReordered, .first = pairs[i].first, .second = pairs[i].second});
  }
}

// A record without a partner among its siblings: matched with what is left over elsewhere on the
// other side, or left over itself. Taking the first that comes, each costs one look-up.
void TreeDiff::addLeftOver(Change change, std::uint32_t record) {
  const bool removed = change == Change::kRemoved;
  const Key key = keyOf(removed ? first_.view() : second_.view(), record);
  LeftOvers& own = removed ? removed_ : added_;
  LeftOvers& other = removed ? added_ : removed_;
  const auto partner = other.find(key);
  if (partner == other.end()) {
    own[key].push_back(differences_.size());
    Difference difference{.change = change};
    (removed ? difference.first : difference.second) = record;
    differences_.push_back(difference);
    return;
  }
  Difference& moved = differences_[partner->second.front()];
  partner->second.pop_front();
  if (partner->second.empty()) other.erase(partner);
  moved.change = Change::kMoved;
  (removed ? moved.first : moved.second) = record;
  pending_.emplace_back(moved.first, moved.second);
}

}  // namespace Orvane
