#include "output/two_table_layout.h"

#include <algorithm>
#include <string_view>

#include "output/data_record.h"
#include "output/family_layout.h"
#include "tree/child_view.h"
#include "tree/parallel.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

std::string_view comparedName(const MenuNode& node) {
  const std::string_view name = storedName(node);
  return name.substr(0, name.find('\0'));
}

class TwoTables {
 public:
  TwoTables(const TrackTable* tracks, TreeTable& treeTable, DataTable& dataTable,
            DataRecordIndex& idMap)
      : view_(tracks),
        candidateView_(tracks),
        treeTable_(treeTable),
        dataTable_(dataTable),
        idMap_(idMap) {
    if (tracks != nullptr) hashNewTracks(*tracks);
  }

  using Link = TreeTable::Link;

  std::uint32_t size() const { return treeTable_.size(); }

  Link append(Child child) {
    if (!child.isNode()) return treeTable_.appendLeaf(dataIndexOf(child));
    const MenuNode& node = *child.node();
    TreeRecord record{.dataIndex = findOrAdd(child, hashOf(node))};
    const bool isLeaf = node.getNodeType() == NODE_TYPE_MEDIA && node.childCount() == 0;
    if (isLeaf && !isDeferred(node)) return treeTable_.appendLeaf(record.dataIndex);
    fillTreeRecord(node, record);
    return treeTable_.append(record);
  }

  void setFirstChild(Link link, std::uint32_t index) { treeTable_.setFirstChild(link, index); }

  static bool isDeferred(const MenuNode& child) {
    return child.getRecType() == RecType::kPlainMenu && child.getName() == "Playlists";
  }

  void expect(Child child, int step) {
    if (child.isNode()) {
      if (step < 2) {
        view_.expect(child, step);
      } else {
        idMap_.byNameAndId.expect(hashOf(*child.node()));
      }
    } else {
      const DataRecordIndex::OfTrack& known = idMap_.byTrack[child.trackNumber()];
      if (step == 0) {
        prefetch(&known);
      } else if (step == 1 && known.index == 0) {
        idMap_.byNameAndId.expect(known.hash);
      }
    }
  }

 private:
  static std::uint32_t hashOf(const MenuNode& node) {
    return hashNameAndId(comparedName(node), node.getMediaId());
  }

  // Track after track, as they and their titles stand in memory: their leaves come in any order.
  void hashNewTracks(const TrackTable& tracks) {
    constexpr std::size_t kStep = 4096;
    auto& byTrack = idMap_.byTrack;
    const std::size_t known = std::max<std::size_t>(byTrack.size(), 1);  // there is no track 0
    if (tracks.size() <= known) return;
    byTrack.resize(tracks.size());
    idMap_.byNameAndId.reserve(tracks.size());
    const std::size_t count = tracks.size() - known;
    forEachInParallel(
        (count + kStep - 1) / kStep, workersFor(count), [&](std::size_t i, std::size_t) {
          MenuNode leaf;
          const std::size_t begin = known + i * kStep;
          for (std::size_t at = begin; at < std::min(begin + kStep, tracks.size()); ++at) {
            leaf.becomeLeafOf(*tracks[at]);
            byTrack[at].hash = hashOf(leaf);
          }
        });
  }

  std::uint32_t dataIndexOf(Child leaf) {
    DataRecordIndex::OfTrack& known = idMap_.byTrack[leaf.trackNumber()];
    if (known.index == 0) known.index = findOrAdd(leaf, known.hash);
    return known.index;
  }

  std::uint32_t findOrAdd(Child child, std::uint32_t hash) {
    const auto next = static_cast<std::uint32_t>(dataTable_.size());
    const std::uint32_t index =
        idMap_.byNameAndId.findOrInsert(hash, next, [&](std::uint32_t candidate) {
          const MenuNode& node = view_(child);
          const MenuNode& other = candidateView_(dataTable_[candidate]);
          return other.getMediaId() == node.getMediaId() &&
                 comparedName(other) == comparedName(node);
        });
    if (index == next) dataTable_.push_back(child);
    return index;
  }

  ChildView view_;
  ChildView candidateView_;
  TreeTable& treeTable_;
  DataTable& dataTable_;
  DataRecordIndex& idMap_;
};

}  // namespace

std::uint32_t layoutChildren(const MenuNode* node, TreeTable& treeTable, DataTable& dataTable,
                             DataRecordIndex& idMap) {
  if (node == nullptr) return kNoChildren;
  TwoTables tables(node->getTrackTable(), treeTable, dataTable, idMap);
  return layoutFamilies(*node, tables);
}

}  // namespace Orvane
