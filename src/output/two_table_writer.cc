#include "output/two_table_writer.h"

#include <array>
#include <cstdint>

#include "output/data_record.h"
#include "output/file_header.h"
#include "output/record_sink.h"
#include "output/two_table_layout.h"
#include "tree/prefetch.h"

namespace Orvane {

bool writeTwoTable(const MenuTree& tree, Buffer& buffer) {
  TreeTable treeTable;
  DataTable dataTable;
  DataRecordIndex idMap;
  treeTable.reserve(tree.nodeCountHint());
  dataTable.reserve(tree.nodeCountHint());

  const MenuNode& root = *tree.getRoot();
  dataTable.push_back(&root);
  TreeRecord& rootRecord = treeTable.emplace_back();
  fillTreeRecord(root, rootRecord);
  const std::uint32_t firstChild = layoutChildren(&root, treeTable, dataTable, idMap);
  treeTable.front().firstChildIndex = firstChild;

  std::array<std::uint8_t, kTwoTableHeaderSize> header{};
  fillFileHeader(header, 2, static_cast<std::uint32_t>(treeTable.size()),
                 static_cast<std::uint32_t>(dataTable.size()));

  buffer.openForWrite();
  RecordSink sink(buffer);
  sink.putHeader(header);
  for (const TreeRecord& record : treeTable) sink.put(record.encode());
  std::array<std::uint8_t, kDataRecordSize> bytes;
  forEachPrefetched(dataTable.begin(), dataTable.end(), [&](const MenuNode& node) {
    fillDataRecord(node, bytes);
    sink.put(bytes);
  });
  buffer.close();
  return true;
}

}  // namespace Orvane
