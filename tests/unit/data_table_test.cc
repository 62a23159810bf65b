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

TEST(DataTable, IsReadInTheOrderOfItsRecords) {
  const std::array<std::uint32_t, 4> tracks = {21, 24, 23, 22};
  MenuNode node;
  DataTable table;
  table.appendLeaf(Child(&node));
  table.appendLeaves(tracks);
  table.appendLeaf(Child::ofTrack(7));
  std::vector<DataSource> sources;
  LinkedTableReader<DataSource>(table).read(
      sources, 100, [](std::uint32_t track) { return DataSource::ofLeaf(Child::ofTrack(track)); });
  ASSERT_EQ(sources.size(), 6U);
  EXPECT_EQ(sources[0].child.node(), &node);
  std::vector<std::uint32_t> numbers;
  for (std::size_t i = 1; i < 6; ++i) numbers.push_back(sources[i].child.trackNumber());
  EXPECT_EQ(numbers, (std::vector<std::uint32_t>{21, 24, 23, 22, 7}));
}

}  // namespace
}  // namespace Orvane::test
