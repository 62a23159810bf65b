#include "output/one_table_writer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
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
  struct Block {
    std::optional<LinkedTableReader<NodeRecord>> from;
    std::vector<NodeRecord> links;
    std::vector<std::array<std::uint8_t, kNodeRecordSize>> records;
  };
  LinkedTableReader<NodeRecord> reader(table);
  sink.putBlocks<Block>(
      table.size(),
      [&](Block& block) {
        block.from = reader;
        return reader.skip(kRecordsAtATime);
      },
      [&](Block& block) {
        ChildView view(tracks);
        const std::vector<NodeRecord>& links = block.links;
        block.from->read(block.links, kRecordsAtATime, [](std::uint32_t track) {
          return NodeRecord::ofLeaf(Child::ofTrack(track));
        });
        block.records.resize(links.size());
        forEachPrefetched(
            links.size(),
            [&](std::size_t i) {
              fillNodeRecord(view(links[i].child), block.records[i]);
              storeU32(&block.records[i][0], links[i].firstChildIndex);
            },
            [&](std::size_t i) { view.expect(links[i].child, 0); },
            [&](std::size_t i) { view.expect(links[i].child, 1); });
      });
}

}  // namespace

bool writeOneTable(const MenuTree& tree, Buffer& buffer) {
  NodeTable table;
  table.reserve(tree.nodeCountHint(), tree.nodeCountHint());
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
