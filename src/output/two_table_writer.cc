#include "output/two_table_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "output/data_record.h"
#include "output/file_header.h"
#include "output/record_sink.h"
#include "output/two_table_layout.h"
#include "tree/child_view.h"
#include "tree/huge_pages.h"
#include "tree/made_ahead.h"
#include "tree/parallel.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

using DataRecords = std::vector<std::array<std::uint8_t, kDataRecordSize>>;

// What the records are filled from is all over the memory.
void encode(std::span<const Child> children, const TrackTable* tracks, DataRecords& records) {
  records.resize(children.size());
  ChildView view(tracks);
  forEachPrefetched(
      children.size(), [&](std::size_t i) { fillDataRecord(view(children[i]), records[i]); },
      [&](std::size_t i) { view.expect(children[i], 0); },
      [&](std::size_t i) { view.expect(children[i], 1); });
}

void putDataTable(const DataTable& dataTable, const TrackTable* tracks, RecordSink& sink) {
  constexpr std::size_t kRecordsAtATime = 1024;
  std::span<const Child> left = dataTable;
  const auto encodeNext = [&](DataRecords& records) {
    const std::size_t count = std::min(left.size(), kRecordsAtATime);
    encode(left.first(count), tracks, records);
    left = left.subspan(count);
    return count > 0;
  };
  const auto put = [&](const DataRecords& records) {
    for (const auto& record : records) sink.put(record);
  };
  if (workersFor(dataTable.size()) > 1) {
    forEachMadeAhead<DataRecords>(encodeNext, put);
  } else {
    for (DataRecords records; encodeNext(records);) put(records);
  }
}

void layOut(const MenuTree& tree, TreeTable& treeTable, DataTable& dataTable) {
  const MenuNode& root = *tree.getRoot();
  DataRecordIndex idMap(tree);
  dataTable.push_back(tree.root());
  TreeRecord rootRecord;
  fillTreeRecord(root, rootRecord);
  const TreeTable::Link rootLink = treeTable.append(rootRecord);
  treeTable.setFirstChild(rootLink, layoutChildren(&root, treeTable, dataTable, idMap));
}

}  // namespace

bool writeTwoTable(const MenuTree& tree, Buffer& buffer) {
  TreeTable treeTable;
  DataTable dataTable;
  treeTable.reserve(tree.nodeCountHint());
  // Hardly more than the tracks have records of their own: the menus.
  dataTable.reserve(tree.getTrackTable() ? tree.getTrackTable()->size() : tree.nodeCountHint());
  layOut(tree, treeTable, dataTable);

  std::array<std::uint8_t, kTwoTableHeaderSize> header{};
  fillFileHeader(header, 2, treeTable.size(), static_cast<std::uint32_t>(dataTable.size()));

  giveBackSpareMemory();
  buffer.openForWrite();
  RecordSink sink(buffer);
  sink.putHeader(header);
  treeTable.forEach([&](const TreeRecord& record) { sink.put(record.encode()); });
  treeTable.clear();
  giveBackSpareMemory();
  putDataTable(dataTable, tree.getTrackTable(), sink);
  buffer.close();
  return true;
}

}  // namespace Orvane
