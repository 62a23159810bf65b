#include "tree/position_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "seeded_random.h"
#include "tree/keyed_hash.h"

namespace Orvane::test {
namespace {

using Key = std::pair<std::string, std::uint32_t>;

// Enters a key as the users of the index do and returns its position.
std::uint32_t enter(PositionIndex& index, std::vector<Key>& keys, const Key& key,
                    std::uint32_t hash) {
  const auto next = static_cast<std::uint32_t>(keys.size());
  const std::uint32_t position = index.findOrInsert(
      hash, next, [&](std::uint32_t candidate) { return keys.at(candidate) == key; });
  if (position == next) keys.push_back(key);
  return position;
}

TEST(PositionIndex, FindsTheFirstOfEqualKeys) {
  PositionIndex index;
  std::vector<Key> keys;
  std::vector<Key> plain;
  std::mt19937 random = seededRandom(5);
  for (int i = 0; i < 20000; ++i) {
    const auto number = static_cast<std::uint32_t>(random() % 3000);
    const Key key{std::to_string(number % 50), number};
    const auto known = std::find(plain.begin(), plain.end(), key);
    const auto expected = static_cast<std::uint32_t>(known - plain.begin());
    if (known == plain.end()) plain.push_back(key);
    ASSERT_EQ(enter(index, keys, key, hashNameAndId(key.first, key.second)), expected);
  }
  EXPECT_EQ(keys, plain);
}

TEST(PositionIndex, TellsKeysOfOneHashApart) {
  PositionIndex index;
  std::vector<Key> keys;
  for (std::uint32_t round = 0; round < 2; ++round) {
    for (std::uint32_t i = 0; i < 500; ++i) EXPECT_EQ(enter(index, keys, {"", i}, 0xFFFFFFFF), i);
  }
}

TEST(PositionIndex, ForgetsAllWhenCleared) {
  PositionIndex index;
  const auto asAny = [](std::uint32_t) { return true; };
  EXPECT_EQ(index.findOrInsert(7, 1, asAny), 1U);
  EXPECT_EQ(index.findOrInsert(7, 2, asAny), 1U);
  index.clear();
  EXPECT_EQ(index.findOrInsert(7, 3, asAny), 3U);
}

TEST(PositionIndex, HashDependsOnNameAndId) {
  EXPECT_NE(hashNameAndId("a", 1), hashNameAndId("a", 2));
  EXPECT_NE(hashNameAndId("a", 1), hashNameAndId("b", 1));
  EXPECT_EQ(hashNameAndId(std::string("same"), 3), hashNameAndId("same", 3));
}

}  // namespace
}  // namespace Orvane::test
