#include "output/one_table_writer.h"

#include <array>
#include <cstdint>

#include "output/file_header.h"
#include "output/little_endian.h"
#include "output/one_table_layout.h"
#include "output/record_sink.h"

namespace Orvane {

bool writeOneTable(const MenuTree& tree, Buffer& buffer) {
  const MenuNode& root = *tree.getRoot();
  NodeTable table;
  table.reserve(tree.nodeCountHint());
  table.push_back({&root, 0});
  const std::uint32_t firstChild = layoutNodeChildren(&root, table);
  table.front().firstChildIndex = firstChild;

  std::array<std::uint8_t, kOneTableHeaderSize> header{};
  fillFileHeader(header, 1, static_cast<std::uint32_t>(table.size()), 0);

  buffer.openForWrite();
  RecordSink sink(buffer);
  sink.putHeader(header);
  std::array<std::uint8_t, kNodeRecordSize> bytes;
  for (const NodeRecord& record : table) {
    fillNodeRecord(*record.node, bytes);
    storeU32(&bytes[0], record.firstChildIndex);
    sink.put(bytes);
  }
  buffer.close();
  return true;
}

}  // namespace Orvane
