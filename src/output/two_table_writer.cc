#include "output/two_table_writer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "output/data_record.h"
#include "output/data_table.h"
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
  struct Block {
    std::optional<LinkedTableReader<TreeRecord>> from;
    std::vector<TreeRecord::Bytes> records;
  };
  LinkedTableReader<TreeRecord> reader(treeTable);
  sink.putBlocks<Block>(
      treeTable.size(),
      [&](Block& block) {
        block.from = reader;
        return reader.skip(kRecordsAtATime);
      },
      [&](Block& block) {
        block.from->read(
            block.records, kRecordsAtATime,
            [&](std::uint32_t track) { return TreeRecord::ofLeaf(idMap.records[track]); },
            [](const TreeRecord& record) { return record.encode(); });
      });
}

// What the records are filled from is all over the memory.
void putDataTable(const DataTable& dataTable, const TrackTable* tracks, RecordSink& sink) {
  constexpr std::size_t kRecordsAtATime = 1024;
  struct Block {
    std::optional<LinkedTableReader<DataSource>> from;
    std::vector<DataSource> sources;
    std::vector<std::array<std::uint8_t, kDataRecordSize>> records;
  };
  LinkedTableReader<DataSource> reader(dataTable);
  sink.putBlocks<Block>(
      dataTable.size(),
      [&](Block& block) {
        block.from = reader;
        return reader.skip(kRecordsAtATime);
      },
      [&](Block& block) {
        ChildView view(tracks);
        const std::vector<DataSource>& sources = block.sources;
        block.from->read(block.sources, kRecordsAtATime, [](std::uint32_t track) {
          return DataSource::ofLeaf(Child::ofTrack(track));
        });
        block.records.resize(sources.size());
        forEachPrefetched(
            sources.size(),
            [&](std::size_t i) { fillDataRecord(view(sources[i].child), block.records[i]); },
            [&](std::size_t i) { view.expect(sources[i].child, 0); },
            [&](std::size_t i) { view.expect(sources[i].child, 1); });
      });
}

void layOut(const MenuTree& tree, TreeTable& treeTable, DataTable& dataTable,
            DataRecordIndex& idMap) {
  const MenuNode& root = *tree.getRoot();
  dataTable.appendLeaf(tree.root());
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
  dataTable.reserve(tree.nodeCountHint(), 0);
  treeTable.reserve(tree.nodeCountHint(), tree.nodeCountHint());
  layOut(tree, treeTable, dataTable, idMap);
  idMap.endSearch(dataTable);

  std::array<std::uint8_t, kTwoTableHeaderSize> header{};
  fillFileHeader(header, 2, treeTable.size(), dataTable.size());

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
