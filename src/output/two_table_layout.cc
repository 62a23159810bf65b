#include "output/two_table_layout.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "output/family_walk.h"
#include "output/walked_ahead.h"
#include "tree/child_view.h"
#include "tree/huge_pages.h"
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

  static bool isDeferred(const MenuNode& child) {
    return child.getRecType() == RecType::kPlainMenu && child.getName() == "Playlists";
  }

  // Asks, in two steps, for what takeStep() looks at.
  void expect(const LayoutStep& step, int part) const {
    if (step.kind == LayoutStep::Kind::kNode && part == 0) {
      prefetch(step.node);
      idMap_.byNameAndId.expect(step.hash);
    } else if (step.kind == LayoutStep::Kind::kNode) {
      const Child shared = idMap_.byNameAndId.likely(step.hash).child;
      if (shared.isNode()) prefetch(shared.node());
    } else if (step.kind == LayoutStep::Kind::kLeaves && part == 0) {
      prefetch(step.tracks.data());
    } else if (step.kind == LayoutStep::Kind::kLeaves) {
      expectLeaves(step.tracks);
    }
  }

  void append(const LayoutStep& step) {
    const std::uint32_t dataIndex = findOrAdd(Child(step.node), step.hash);
    if (!step.isLinked && step.childCount == 0) {
      treeTable_.appendLeaf(dataIndex);
      return;
    }
    const TreeTable::Link link =
        treeTable_.append({.childCount = step.childCount, .dataIndex = dataIndex});
    if (!step.isLinked) return;
    links_.resize(step.place + std::size_t{1});
    links_.back() = link;
  }

  void appendLeaves(std::span<const std::uint32_t> tracks) {
    const std::uint32_t next = dataTable_.size();
    const bool areNew = idMap_.tracksWithoutRecord > 0 && giveRecords(tracks);
    // Those that the data table has in runs aren't known before all is laid out.
    const auto isKnown = [&](std::uint32_t track) { return idMap_.records[track] != 0; };
    const bool isShort = tracks.size() < TreeTable::kLeastRun;
    if (isShort && std::all_of(tracks.begin(), tracks.end(), isKnown)) {
      for (const std::uint32_t track : tracks) treeTable_.appendLeaf(idMap_.records[track]);
    } else if (areNew) {
      treeTable_.appendLeaves(tracks, next);
    } else {
      treeTable_.appendLeaves(tracks);
    }
  }

  void setFirstChild(std::uint32_t place, std::uint32_t index) {
    treeTable_.setFirstChild(links_[place], index);
  }

 private:
  static constexpr std::size_t kFewLeaves = 64;

  void expectLeaves(std::span<const std::uint32_t> tracks) const {
    if (tracks.size() >= TreeTable::kLeastRun && idMap_.hashes.empty()) return;
    const auto first = tracks.first(std::min(tracks.size(), kFewLeaves));
    for (const std::uint32_t track : first) prefetch(&idMap_.records[track]);
  }

  void expectSearch(std::uint32_t track) const {
    if (idMap_.records[track] != DataRecordIndex::kToBeSearched) return;
    idMap_.byNameAndId.expect(idMap_.hashes[track]);
  }

  // Sees to it that the tracks' leaves have data records. Whether all of these are new, and so
  // count up.
  bool giveRecords(std::span<const std::uint32_t> tracks) {
    std::size_t begin = 0;  // of those that are new, behind the last that isn't
    const auto give = [&](std::size_t i) {
      const std::uint32_t track = tracks[i];
      if (idMap_.known.insert(track)) return;
      addTracks(tracks.subspan(begin, i - begin));
      begin = i + 1;
      if (idMap_.hashes.empty()) return;
      std::uint32_t& record = idMap_.records[track];
      if (record != DataRecordIndex::kToBeSearched) return;
      record = findOrAdd(Child::ofTrack(track), idMap_.hashes[track]);
      --idMap_.tracksWithoutRecord;
    };
    if (idMap_.hashes.empty() || tracks.size() <= kFewLeaves) {
      for (std::size_t i = 0; i < tracks.size(); ++i) give(i);
    } else {
      forEachPrefetched(
          tracks.size(), give, [&](std::size_t i) { prefetch(&idMap_.records[tracks[i]]); },
          [&](std::size_t i) { expectSearch(tracks[i]); });
    }
    addTracks(tracks.subspan(begin));
    return begin == 0;
  }

  // Adds records that nothing else shares.
  void addTracks(std::span<const std::uint32_t> tracks) {
    if (tracks.size() >= DataTable::kLeastRun) {
      dataTable_.appendLeaves(tracks);
    } else {
      for (const std::uint32_t track : tracks) {
        idMap_.records[track] = dataTable_.size();
        dataTable_.appendLeaf(Child::ofTrack(track));
      }
    }
    idMap_.tracksWithoutRecord -= tracks.size();
  }

  std::uint32_t findOrAdd(Child child, std::uint32_t hash) {
    const std::uint32_t next = dataTable_.size();
    using Entry = DataRecordIndex::Entry;
    const Entry& found =
        idMap_.byNameAndId.findOrInsert({hash, next, child}, [&](const Entry& entry) {
          return DataRecordIndex::areAlike(view_(child), candidateView_(entry.child));
        });
    if (found.record == next) dataTable_.appendLeaf(child);
    return found.record;
  }

  ChildView view_;
  ChildView candidateView_;
  TreeTable& treeTable_;
  DataTable& dataTable_;
  DataRecordIndex& idMap_;
  LargeVector<TreeTable::Link> links_;  // by place
};

}  // namespace

std::uint32_t layoutChildren(const MenuNode* node, TreeTable& treeTable, DataTable& dataTable,
                             DataRecordIndex& idMap) {
  if (node == nullptr || node->getNodeType() == NODE_TYPE_MEDIA) return kNoChildren;
  const std::uint32_t first = treeTable.size();
  FamilyWalk walk(*node, first,
                  {.isDeferred = TwoTables::isDeferred, .hashOf = DataRecordIndex::hashOf});
  TwoTables tables(node->getTrackTable(), treeTable, dataTable, idMap);
  forEachWalkedAhead(walk, [&](const std::vector<LayoutStep>& steps) {
    forEachPrefetched(
        steps.size(), [&](std::size_t i) { takeStep(steps[i], tables); },
        [&](std::size_t i) { tables.expect(steps[i], 0); },
        [&](std::size_t i) { tables.expect(steps[i], 1); });
  });
  return first;
}

}  // namespace Orvane
