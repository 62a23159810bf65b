#include "inventory/id_map.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>

namespace Orvane::test {
namespace {

using Plain = std::map<std::uint32_t, int>;

void expectSame(const IdMap<int, -1>& map, const Plain& plain, std::uint32_t id) {
  const int* const found = map.find(id);
  const auto expected = plain.find(id);
  ASSERT_EQ(found != nullptr, expected != plain.end()) << id;
  if (found != nullptr) {
    ASSERT_EQ(*found, expected->second) << id;
  }
}

// Each kind of id: from a handful, in steps that share their low bits, or any at all.
std::uint32_t randomId(std::mt19937& random, std::uint32_t kind) {
  const auto number = static_cast<std::uint32_t>(random());
  if (kind == 0) return number % 40;
  if (kind == 1) return (number % 40) << 20;
  return kind == 2 ? 4294967295U - number % 40 : number;
}

TEST(IdMap, DoesWhatAMapDoes) {
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    IdMap<int, -1> map;
    Plain plain;
    const std::uint32_t kind = seed % 4;
    for (int step = 0; step < 400; ++step) {
      const std::uint32_t id = randomId(random, kind);
      const auto action = static_cast<std::uint32_t>(random() % 100);
      if (action < 55) {
        int& value = map.enter(id, step);
        const auto [expected, isNew] = plain.try_emplace(id, step);
        ASSERT_EQ(value, expected->second);
        if (action % 2 == 0) value = expected->second = 1000 + step;
      } else if (action < 99) {
        map.erase(id);
        plain.erase(id);
      } else {
        map.clear();
        plain.clear();
      }
      ASSERT_NO_FATAL_FAILURE(expectSame(map, plain, id));
      ASSERT_NO_FATAL_FAILURE(expectSame(map, plain, randomId(random, kind)));
    }
    for (const auto& [id, value] : plain) ASSERT_NO_FATAL_FAILURE(expectSame(map, plain, id));
  }
}

TEST(IdMap, HoldsTheSmallestAndTheLargestId) {
  IdMap<int, -1> map;
  EXPECT_EQ(map.find(0), nullptr);
  EXPECT_EQ(map.find(4294967295), nullptr);
  map.enter(0, 1);
  map.enter(4294967295, 2);
  EXPECT_EQ(*map.find(0), 1);
  EXPECT_EQ(*map.find(4294967295), 2);
  map.erase(0);
  EXPECT_EQ(map.find(0), nullptr);
  EXPECT_EQ(*map.find(4294967295), 2);
}

TEST(IdMap, ErasingFromAnEmptyOneIsNothing) {
  IdMap<int, -1> map;
  map.erase(3);
  EXPECT_EQ(map.find(3), nullptr);
}

TEST(IdMap, KeepsManyIds) {
  IdMap<std::uint32_t, 0xFFFFFFFF> map;
  map.reserve(9000);  // as many as somebody expected
  for (std::uint32_t i = 0; i < 20000; ++i) map.enter(i * 7919, i);
  for (std::uint32_t i = 0; i < 20000; i += 2) map.erase(i * 7919);
  for (std::uint32_t i = 0; i < 20000; ++i) {
    const std::uint32_t* const found = map.find(i * 7919);
    ASSERT_EQ(found != nullptr, i % 2 == 1) << i;
    if (found != nullptr) {
      ASSERT_EQ(*found, i);
    }
  }
}

}  // namespace
}  // namespace Orvane::test
