#include "output/one_table_writer.h"

#include <array>
#include <cstdint>

#include "output/file_header.h"
#include "output/little_endian.h"
#include "output/one_table_layout.h"
#include "output/record_sink.h"
#include "tree/child_view.h"
#include "tree/huge_pages.h"

namespace Orvane {

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
  std::array<std::uint8_t, kNodeRecordSize> bytes;
  ChildView view(tree.getTrackTable());
  table.forEach([&](const NodeRecord& record) {
    fillNodeRecord(view(record.child), bytes);
    storeU32(&bytes[0], record.firstChildIndex);
    sink.put(bytes);
  });
  buffer.close();
  return true;
}

}  // namespace Orvane
