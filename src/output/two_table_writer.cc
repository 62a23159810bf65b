#include "output/two_table_writer.h"

#include <array>
#include <cstdint>

#include "output/data_record.h"
#include "output/file_header.h"
#include "output/record_sink.h"
#include "output/two_table_layout.h"
#include "tree/child_view.h"
#include "tree/prefetch.h"

namespace Orvane {

bool writeTwoTable(const MenuTree& tree, Buffer& buffer) {
  TreeTable treeTable;
  DataTable dataTable;
  DataRecordIndex idMap;
  treeTable.reserve(tree.nodeCountHint());
  dataTable.reserve(tree.nodeCountHint());

  const MenuNode& root = *tree.getRoot();
  dataTable.push_back(tree.root());
  TreeRecord rootRecord;
  fillTreeRecord(root, rootRecord);
  const TreeTable::Link rootLink = treeTable.append(rootRecord);
  treeTable.setFirstChild(rootLink, layoutChildren(&root, treeTable, dataTable, idMap));

  std::array<std::uint8_t, kTwoTableHeaderSize> header{};
  fillFileHeader(header, 2, treeTable.size(), static_cast<std::uint32_t>(dataTable.size()));

  buffer.openForWrite();
  RecordSink sink(buffer);
  sink.putHeader(header);
  treeTable.forEach([&](const TreeRecord& record) { sink.put(record.encode()); });
  std::array<std::uint8_t, kDataRecordSize> bytes;
  ChildView view(tree.getTrackTable());
  const auto put = [&](std::size_t i) {
    fillDataRecord(view(dataTable[i]), bytes);
    sink.put(bytes);
  };
  forEachPrefetched(
      dataTable.size(), put, [&](std::size_t i) { view.expect(dataTable[i], 0); },
      [&](std::size_t i) { view.expect(dataTable[i], 1); });
  buffer.close();
  return true;
}

}  // namespace Orvane
