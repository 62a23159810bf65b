// Most records are those of leaves: what they take is had at once, before the layout begins.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "allocation_probe.h"
#include "output/one_table_layout.h"
#include "output/two_table_layout.h"
#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {
namespace {

constexpr std::uint32_t kLeaves = 2000;
constexpr std::ptrdiff_t kOfTheLayoutItself = 2;

class LayoutMemory : public ::testing::Test {
 protected:
  LayoutMemory() {
    for (std::uint32_t id = 1; id <= kLeaves; ++id) addMedia(root_, id, "leaf");
  }

  MenuTree tree_;
  MenuNode& root_ = *tree_.getRoot();
};

TEST_F(LayoutMemory, LeavesOfOneTableTakeTheirPlacesOnly) {
  NodeTable table;
  table.reserve(kLeaves, 0);
  const LimitedAllocations limited(kOfTheLayoutItself);
  EXPECT_EQ(layoutNodeChildren(&root_, table), 0U);
  EXPECT_EQ(table.size(), kLeaves);
}

TEST_F(LayoutMemory, LeavesOfTwoTablesTakeTheirPlacesOnly) {
  TreeTable treeTable;
  DataTable dataTable;
  DataRecordIndex index(tree_);
  treeTable.reserve(kLeaves, 0);
  dataTable.reserve(kLeaves, 0);
  index.byNameAndId.reserve(kLeaves);
  const LimitedAllocations limited(kOfTheLayoutItself);
  EXPECT_EQ(layoutChildren(&root_, treeTable, dataTable, index), 0U);
  EXPECT_EQ(treeTable.size(), kLeaves);
}

}  // namespace
}  // namespace Orvane::test
