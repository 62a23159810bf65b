#include "output/data_table.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "output/linked_table_reader.h"
#include "tree/menu_node.h"

namespace Orvane::test {
namespace {

TEST(DataTable, FindsChildrenAgain) {
  const std::array<std::uint32_t, 6> tracks = {11, 12, 13, 14, 15, 16};
  DataTable table;
  std::vector<std::uint32_t> records;
  const auto add = [&](std::uint32_t track) {
    ASSERT_EQ(table.childCount(), records.size());
    records.push_back(table.size());
    table.add(Child::ofTrack(track));
  };
  const auto check = [&] {
    ASSERT_EQ(table.childCount(), records.size());
    for (std::uint32_t i = 0; i < records.size(); ++i) {
      EXPECT_EQ(table.childAt(i).trackNumber(), i);
      EXPECT_EQ(table.recordOf(i), records[i]);
    }
  };
  for (const std::uint32_t track : {0U, 1U, 2U}) add(track);
  check();
  table.appendLeaves(tracks);
  check();
  for (const std::uint32_t track : {3U, 4U}) add(track);
  table.appendLeaves({tracks.data(), 4});
  add(5);
  check();
  EXPECT_EQ(records, (std::vector<std::uint32_t>{0, 1, 2, 9, 10, 15}));
}

TEST(DataTable, IsReadInTheOrderOfItsRecords) {
  const std::array<std::uint32_t, 4> tracks = {21, 24, 23, 22};
  MenuNode node;
  DataTable table;
  table.add(Child(&node));
  table.appendLeaves(tracks);
  table.add(Child::ofTrack(7));
  std::vector<DataSource> sources;
  LinkedTableReader<DataSource>(table.records()).read(sources, 100, [](std::uint32_t track) {
    return DataSource::ofLeaf(Child::ofTrack(track));
  });
  ASSERT_EQ(sources.size(), 6U);
  EXPECT_EQ(sources[0].child.node(), &node);
  std::vector<std::uint32_t> numbers;
  for (std::size_t i = 1; i < 6; ++i) numbers.push_back(sources[i].child.trackNumber());
  EXPECT_EQ(numbers, (std::vector<std::uint32_t>{21, 24, 23, 22, 7}));
}

}  // namespace
}  // namespace Orvane::test
