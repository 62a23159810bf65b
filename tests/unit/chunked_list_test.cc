#include "tree/chunked_list.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvane::test {
namespace {

std::vector<std::uint32_t> valuesOf(const ChunkedList<std::uint32_t>& list) {
  std::vector<std::uint32_t> values;
  list.forEach([&](std::uint32_t value) { values.push_back(value); });
  return values;
}

// Around the ends of its chunks, too.
TEST(ChunkedList, HoldsWhatWasAppendedInOrder) {
  ChunkedList<std::uint32_t> list;
  std::vector<std::uint32_t> expected;
  EXPECT_EQ(valuesOf(list), expected);
  for (std::uint32_t i = 0; i < 2000; ++i) {
    list.push_back(i * 3);
    expected.push_back(i * 3);
    ASSERT_EQ(list.size(), expected.size());
    ASSERT_EQ(valuesOf(list), expected);
  }
  for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(list[i], expected[i]);
}

TEST(ChunkedList, IsEmptyWhenCleared) {
  ChunkedList<std::uint32_t> list;
  for (std::uint32_t i = 0; i < 600; ++i) list.push_back(i);
  list.clear();
  EXPECT_EQ(list.size(), 0U);
  EXPECT_EQ(valuesOf(list), std::vector<std::uint32_t>());
  list.push_back(7);
  EXPECT_EQ(valuesOf(list), std::vector<std::uint32_t>({7}));
}

}  // namespace
}  // namespace Orvane::test
