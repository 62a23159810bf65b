#include "output/data_record_index.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "output/data_record.h"
#include "output/recurring_ids.h"
#include "tree/keyed_hash.h"
#include "tree/parallel.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

// Calls `use` with the numbers of all tracks, many at a time and by several threads.
void forEachPart(const TrackTable& tracks,
                 const std::function<void(std::size_t begin, std::size_t end)>& use) {
  constexpr std::size_t kStep = 4096;
  const std::size_t count = tracks.size() - 1;  // there is no track 0
  forEachInParallel((count + kStep - 1) / kStep, workersFor(count),
                    [&](std::size_t i, std::size_t /*worker*/) {
                      const std::size_t begin = 1 + i * kStep;
                      use(begin, std::min(begin + kStep, tracks.size()));
                    });
}

// What has the id of a node has to look for the record to share, as if it had been met before.
void meetNodes(const MenuNode& top, RecurringIds& ids) {
  if (top.hasTrackNumbers()) return;
  std::vector<const MenuNode*> menus = {&top};  // whose children are nodes
  for (std::size_t i = 0; i < menus.size(); ++i) {
    const auto next = [&](std::size_t distance) -> const MenuNode& {
      return *menus[std::min(i + distance, menus.size() - 1)];
    };
    prefetch(&next(12));
    next(8).expectChildren(0);
    next(4).expectChildren(1);
    const MenuNode& menu = *menus[i];
    const auto meet = [&](std::size_t child) {
      const MenuNode& node = *menu.childAt(child).node();
      ids.meetOften(node.getMediaId());
      if (node.childCount() > 0 && !node.hasTrackNumbers()) menus.push_back(&node);
    };
    forEachPrefetched(
        menu.childCount(), meet, [&](std::size_t child) { prefetch(menu.childAt(child).node()); },
        [&](std::size_t child) { menu.childAt(child).node()->expectChildren(0); });
  }
}

std::string_view comparedName(const MenuNode& node) {
  const std::string_view name = storedName(node);
  return name.substr(0, name.find('\0'));
}

}  // namespace

DataRecordIndex::DataRecordIndex(const MenuTree& tree) {
  if (tree.getTrackTable() == nullptr) return;
  const TrackTable& tracks = *tree.getTrackTable();
  records.resize(tracks.size());
  known = TrackSet(tracks.size());
  tracksWithoutRecord = tracks.size() - 1;  // there is no track 0
  RecurringIds ids(tracks.size());
  meetNodes(*tree.getRoot(), ids);
  forEachPart(tracks, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) ids.meet(tracks[i]->getMediaId());
  });
  std::atomic<bool> hasAnyToSearch = false;
  forEachPart(tracks, [&](std::size_t begin, std::size_t end) {
    bool hasToSearch = false;
    for (std::size_t i = begin; i < end; ++i) {
      if (!ids.mayRecur(tracks[i]->getMediaId())) continue;
      records[i] = kToBeSearched;
      hasToSearch = true;
    }
    if (hasToSearch) hasAnyToSearch = true;
  });
  if (!hasAnyToSearch) return;
  hashes.resize(tracks.size());
  forEachPart(tracks, [&](std::size_t begin, std::size_t end) {
    MenuNode leaf;
    for (std::size_t i = begin; i < end; ++i) {
      if (records[i] != kToBeSearched) continue;
      leaf.becomeLeafOf(*tracks[i]);
      hashes[i] = hashOf(leaf);
    }
  });
  for (std::uint32_t i = 0; i < records.size(); ++i) {
    if (records[i] == kToBeSearched) known.insert(i);
  }
}

void DataRecordIndex::endSearch(const DataTable& dataTable) {
  byNameAndId.clear();
  release(hashes);
  constexpr std::uint32_t kStep = 4096;
  const std::span<const DataTable::Run> runs = dataTable.runs();
  const std::size_t steps = (std::size_t{dataTable.size()} + kStep - 1) / kStep;
  forEachInParallel(
      steps, workersFor(dataTable.size()), [&](std::size_t i, std::size_t /*worker*/) {
        const auto begin = static_cast<std::uint32_t>(i * kStep);
        const std::uint32_t end = begin + std::min(kStep, dataTable.size() - begin);
        auto run = std::partition_point(runs.begin(), runs.end(), [=](const DataTable::Run& other) {
          return other.end <= begin;
        });
        for (; run != runs.end() && run->begin < end; ++run) {
          const std::uint32_t last = std::min(run->end, end);
          for (std::uint32_t record = std::max(run->begin, begin); record < last; ++record) {
            records[run->tracks[record - run->begin]] = record;
          }
        }
      });
}

std::uint32_t DataRecordIndex::hashOf(const MenuNode& node) {
  return hashNameAndId(comparedName(node), node.getMediaId());
}

bool DataRecordIndex::areAlike(const MenuNode& a, const MenuNode& b) {
  if (a.getMediaId() != b.getMediaId()) return false;
  const std::string_view name = a.getName();
  const std::string_view other = b.getName();
  // Most nodes that are alike have their name from the same album or artist.
  const bool isSame = name.data() == other.data() && name.size() == other.size();
  return isSame || comparedName(a) == comparedName(b);
}

}  // namespace Orvane
