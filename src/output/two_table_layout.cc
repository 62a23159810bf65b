#include "output/two_table_layout.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>

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
    TreeRecord record{.dataIndex = findOrAdd(Child(&node), hashOf(node))};
    const bool isLeaf = node.getNodeType() == NODE_TYPE_MEDIA && node.childCount() == 0;
    if (isLeaf && !isDeferred(node)) return treeTable_.appendLeaf(record.dataIndex);
    fillTreeRecord(node, record);
    return treeTable_.append(record);
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

  void setFirstChild(Link link, std::uint32_t index) { treeTable_.setFirstChild(link, index); }

  static bool isDeferred(const MenuNode& child) {
    return child.getRecType() == RecType::kPlainMenu && child.getName() == "Playlists";
  }

  void expect(MenuNode& node, int step) {
    if (step < 2) {
      view_.expect(Child(&node), step);
      if (step == 1) node.expectChildren(0);  // for their number
    } else if (step == 2) {
      const std::uint32_t hash = hashOf(node);
      hashes_[placeOf(node)] = {&node, hash};
      idMap_.byNameAndId.expect(hash);
    } else {
      const Child shared = idMap_.byNameAndId.likely(hashOf(node)).child;
      if (shared.isNode()) prefetch(shared.node());
    }
  }

  void expectLeaves(std::span<const std::uint32_t> tracks) const {
    if (tracks.size() >= TreeTable::kLeastRun && idMap_.hashes.empty()) return;
    const auto first = tracks.first(std::min(tracks.size(), kFewLeaves));
    for (const std::uint32_t track : first) prefetch(&idMap_.records[track]);
  }

 private:
  static constexpr std::size_t kFewLeaves = 64;

  // The hash of a node that was expected a while ago is mostly still known.
  std::uint32_t hashOf(const MenuNode& node) const {
    const Hashed& hashed = hashes_[placeOf(node)];
    return hashed.node == &node ? hashed.hash : DataRecordIndex::hashOf(node);
  }

  struct Hashed {
    const MenuNode* node = nullptr;
    std::uint32_t hash = 0;
  };
  using Hashes = std::array<Hashed, 256>;

  static std::size_t placeOf(const MenuNode& node) {
    return std::bit_cast<std::uintptr_t>(&node) / alignof(MenuNode) % std::tuple_size_v<Hashes>;
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
  Hashes hashes_;  // of nodes expected, each in a place that its address decides
};

}  // namespace

std::uint32_t layoutChildren(const MenuNode* node, TreeTable& treeTable, DataTable& dataTable,
                             DataRecordIndex& idMap) {
  if (node == nullptr) return kNoChildren;
  TwoTables tables(node->getTrackTable(), treeTable, dataTable, idMap);
  return layoutFamilies(*node, tables);
}

}  // namespace Orvane
