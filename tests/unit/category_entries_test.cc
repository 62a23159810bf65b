#include "inventory/category_entries.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace Orvane::test {
namespace {

using Entry = std::pair<std::uint32_t, std::uint32_t>;

std::vector<Entry> entriesOf(const CategoryEntries& entries) {
  std::vector<Entry> result;
  entries.forEach(
      [&](std::uint32_t name, std::uint32_t track) { result.emplace_back(name, track); });
  return result;
}

TEST(CategoryEntries, KeepsPairsOfAnyTracksInOrder) {
  const std::vector<Entry> given = {{5, 1}, {5, 2}, {6, 3}, {6, 9},          {5, 10},
                                    {7, 4}, {7, 4}, {7, 0}, {8, 0xFFFFFFFF}, {9, 0}};
  CategoryEntries entries;
  EXPECT_EQ(entriesOf(entries), std::vector<Entry>());
  for (const auto& [name, track] : given) entries.add(name, track);
  EXPECT_EQ(entries.size(), given.size());
  EXPECT_EQ(entriesOf(entries), given);
}

TEST(CategoryEntries, ForgetsAll) {
  CategoryEntries entries;
  entries.add(1, 2);
  entries.clear();
  EXPECT_EQ(entriesOf(entries), std::vector<Entry>());
  entries.add(3, 3);
  EXPECT_EQ(entriesOf(entries), (std::vector<Entry>{{3, 3}}));
}

}  // namespace
}  // namespace Orvane::test
