#include "output/two_table_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "output/data_record.h"
#include "output/file_header.h"
#include "output/linked_table_reader.h"
#include "output/record_sink.h"
#include "output/two_table_layout.h"
#include "tree/child_view.h"
#include "tree/huge_pages.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

void putTreeTable(const TreeTable& treeTable, const DataRecordIndex& idMap, RecordSink& sink) {
  constexpr std::size_t kRecordsAtATime = 4096;
  LinkedTableReader<TreeRecord> reader(treeTable);
  std::vector<TreeRecord> records;
  using Block = std::vector<TreeRecord::Bytes>;
  sink.putBlocks<Block>(treeTable.size(), [&](Block& block) {
    reader.read(records, kRecordsAtATime,
                [&](std::uint32_t track) { return TreeRecord::ofLeaf(idMap.records[track]); });
    block.resize(records.size());
    std::transform(records.begin(), records.end(), block.begin(),
                   [](const TreeRecord& record) { return record.encode(); });
  });
}

// What the records are filled from is all over the memory.
void putDataTable(const DataTable& dataTable, const TrackTable* tracks, RecordSink& sink) {
  constexpr std::size_t kRecordsAtATime = 1024;
  std::span<const Child> left = dataTable;
  ChildView view(tracks);
  using Block = std::vector<std::array<std::uint8_t, kDataRecordSize>>;
  sink.putBlocks<Block>(dataTable.size(), [&](Block& block) {
    const std::span<const Child> children = left.first(std::min(left.size(), kRecordsAtATime));
    left = left.subspan(children.size());
    block.resize(children.size());
    forEachPrefetched(
        children.size(), [&](std::size_t i) { fillDataRecord(view(children[i]), block[i]); },
        [&](std::size_t i) { view.expect(children[i], 0); },
        [&](std::size_t i) { view.expect(children[i], 1); });
  });
}

void layOut(const MenuTree& tree, TreeTable& treeTable, DataTable& dataTable,
            DataRecordIndex& idMap) {
  const MenuNode& root = *tree.getRoot();
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
  DataRecordIndex idMap(tree);
  treeTable.reserve(tree.nodeCountHint());
  dataTable.reserve(tree.nodeCountHint() + idMap.tracksWithoutRecord);
  layOut(tree, treeTable, dataTable, idMap);
  idMap.endSearch();

  std::array<std::uint8_t, kTwoTableHeaderSize> header{};
  fillFileHeader(header, 2, treeTable.size(), static_cast<std::uint32_t>(dataTable.size()));

  giveBackSpareMemory();
  buffer.openForWrite();
  RecordSink sink(buffer);
  sink.putHeader(header);
  putTreeTable(treeTable, idMap, sink);
  treeTable.clear();
  release(idMap.records);
  giveBackSpareMemory();
  putDataTable(dataTable, tree.getTrackTable(), sink);
  buffer.close();
  return true;
}

}  // namespace Orvane
