#include "output/two_table_layout.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "output/family_layout.h"
#include "tree/child_view.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

class TwoTables {
 public:
  TwoTables(const TrackTable* tracks, TreeTable& treeTable, DataTable& dataTable,
            DataRecordIndex& idMap)
      : view_(tracks),
        candidateView_(tracks),
        treeTable_(treeTable),
        dataTable_(dataTable),
        idMap_(idMap) {}

  using Link = TreeTable::Link;

  std::uint32_t size() const { return treeTable_.size(); }

  Link append(MenuNode& node) {
    TreeRecord record{.dataIndex = findOrAdd(Child(&node), takeExpectedHash())};
    const bool isLeaf = node.getNodeType() == NODE_TYPE_MEDIA && node.childCount() == 0;
    if (isLeaf && !isDeferred(node)) return treeTable_.appendLeaf(record.dataIndex);
    fillTreeRecord(node, record);
    return treeTable_.append(record);
  }

  void appendLeaves(std::span<const std::uint32_t> tracks) {
    if (tracks.size() < TreeTable::kLeastRun) {
      for (const std::uint32_t track : tracks) {
        giveRecord(track);
        treeTable_.appendLeaf(idMap_.records[track]);
      }
      return;
    }
    treeTable_.appendLeaves(tracks);
    if (idMap_.tracksWithoutRecord == 0) return;
    const auto give = [&](std::size_t i) { giveRecord(tracks[i]); };
    if (tracks.size() <= kFewLeaves) {
      // Most of them have been asked for.
      for (std::size_t i = 0; i < tracks.size(); ++i) give(i);
    } else {
      forEachPrefetched(
          tracks.size(), give, [&](std::size_t i) { prefetch(&idMap_.records[tracks[i]]); },
          [&](std::size_t i) { expectSearch(tracks[i]); });
    }
  }

  void setFirstChild(Link link, std::uint32_t index) { treeTable_.setFirstChild(link, index); }

  static bool isDeferred(const MenuNode& child) {
    return child.getRecType() == RecType::kPlainMenu && child.getName() == "Playlists";
  }

  void expect(MenuNode& node, int step) {
    if (step < 2) {
      view_.expect(Child(&node), step);
    } else {
      const std::uint32_t hash = DataRecordIndex::hashOf(node);
      idMap_.byNameAndId.expect(hash);
      expectedHashes_[expected_++ % kMostExpected] = hash;
    }
  }

  void expectLeaves(std::span<const std::uint32_t> tracks) const {
    const auto first = tracks.first(std::min(tracks.size(), kFewLeaves));
    for (const std::uint32_t track : first) prefetch(&idMap_.records[track]);
  }

 private:
  static constexpr std::size_t kFewLeaves = 64;
  static constexpr std::size_t kMostExpected = 32;

  // Nodes are laid out in the order in which they were expected.
  std::uint32_t takeExpectedHash() { return expectedHashes_[taken_++ % kMostExpected]; }

  void expectSearch(std::uint32_t track) const {
    if (idMap_.records[track] != DataRecordIndex::kToBeSearched) return;
    idMap_.byNameAndId.expect(idMap_.hashes[track]);
  }

  // Sees to it that the track's leaves have a data record.
  void giveRecord(std::uint32_t track) {
    std::uint32_t& record = idMap_.records[track];
    const bool isNew = record == 0;
    if (!isNew && record != DataRecordIndex::kToBeSearched) return;
    const Child leaf = Child::ofTrack(track);
    record = isNew ? add(leaf) : findOrAdd(leaf, idMap_.hashes[track]);
    --idMap_.tracksWithoutRecord;
  }

  std::uint32_t add(Child child) {
    dataTable_.push_back(child);
    return static_cast<std::uint32_t>(dataTable_.size() - 1);
  }

  std::uint32_t findOrAdd(Child child, std::uint32_t hash) {
    const auto next = static_cast<std::uint32_t>(dataTable_.size());
    const std::uint32_t index =
        idMap_.byNameAndId.findOrInsert(hash, next, [&](std::uint32_t candidate) {
          const MenuNode& node = view_(child);
          const MenuNode& other = candidateView_(dataTable_[candidate]);
          return other.getMediaId() == node.getMediaId() &&
                 DataRecordIndex::comparedName(other) == DataRecordIndex::comparedName(node);
        });
    return index == next ? add(child) : index;
  }

  ChildView view_;
  ChildView candidateView_;
  TreeTable& treeTable_;
  DataTable& dataTable_;
  DataRecordIndex& idMap_;
  std::array<std::uint32_t, kMostExpected> expectedHashes_{};
  std::size_t expected_ = 0;
  std::size_t taken_ = 0;
};

}  // namespace

std::uint32_t layoutChildren(const MenuNode* node, TreeTable& treeTable, DataTable& dataTable,
                             DataRecordIndex& idMap) {
  if (node == nullptr) return kNoChildren;
  TwoTables tables(node->getTrackTable(), treeTable, dataTable, idMap);
  return layoutFamilies(*node, tables);
}

}  // namespace Orvane
