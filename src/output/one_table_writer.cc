#include "output/one_table_writer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "output/file_header.h"
#include "output/linked_table_reader.h"
#include "output/little_endian.h"
#include "output/one_table_layout.h"
#include "output/record_sink.h"
#include "tree/child_view.h"
#include "tree/huge_pages.h"
#include "tree/prefetch.h"

namespace Orvane {

namespace {

// What the records are filled from is all over the memory.
void putTable(const NodeTable& table, const TrackTable* tracks, RecordSink& sink) {
  constexpr std::size_t kRecordsAtATime = 1024;
  LinkedTableReader<NodeRecord> reader(table);
  std::vector<NodeRecord> records;
  ChildView view(tracks);
  using Block = std::vector<std::array<std::uint8_t, kNodeRecordSize>>;
  sink.putBlocks<Block>(table.size(), [&](Block& block) {
    reader.read(records, kRecordsAtATime,
                [](std::uint32_t track) { return NodeRecord::ofLeaf(Child::ofTrack(track)); });
    block.resize(records.size());
    forEachPrefetched(
        records.size(),
        [&](std::size_t i) {
          fillNodeRecord(view(records[i].child), block[i]);
          storeU32(&block[i][0], records[i].firstChildIndex);
        },
        [&](std::size_t i) { view.expect(records[i].child, 0); },
        [&](std::size_t i) { view.expect(records[i].child, 1); });
  });
}

}  // namespace

bool writeOneTable(const MenuTree& tree, Buffer& buffer) {
  NodeTable table;
  table.reserve(tree.nodeCountHint());
  const NodeTable::Link rootLink = table.append({tree.root()});
  table.setFirstChild(rootLink, layoutNodeChildren(tree.getRoot(), table));

  std::array<std::uint8_t, kOneTableHeaderSize> header{};
  fillFileHeader(header, 1, table.size(), 0);

  giveBackSpareMemory();
  buffer.openForWrite();
  RecordSink sink(buffer);
  sink.putHeader(header);
  putTable(table, tree.getTrackTable(), sink);
  buffer.close();
  return true;
}

}  // namespace Orvane
