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
  idMap.reserve(tree.highestContentToken());

  const MenuNode& root = *tree.getRoot();
  dataTable.push_back(&root);
  const TreeTable::Link rootLink = treeTable.append(root, 0);
  treeTable.setFirstChild(rootLink, layoutChildren(&root, treeTable, dataTable, idMap));

  std::array<std::uint8_t, kTwoTableHeaderSize> header{};
  fillFileHeader(header, 2, treeTable.size(), static_cast<std::uint32_t>(dataTable.size()));

  buffer.openForWrite();
  RecordSink sink(buffer);
  sink.putHeader(header);
  treeTable.forEach([&](const TreeRecord& record) { sink.put(record.encode()); });
  std::array<std::uint8_t, kDataRecordSize> bytes;
  const auto put = [&](const MenuNode& node) {
    fillDataRecord(node, bytes);
    sink.put(bytes);
  };
  forEachPrefetched(dataTable.begin(), dataTable.end(), put,
                    [](const MenuNode& node) { node.prefetchContent(); });
  buffer.close();
  return true;
}

}  // namespace Orvane
