#include "inventory/id_map.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <utility>

namespace Orvane::test {
namespace {

using Plain = std::map<std::uint32_t, int>;
using Values = IdMap<IdEntry<int, -1>>;

void expectSame(const Values& map, const Plain& plain, std::uint32_t id) {
  const auto* const found = map.find(id);
  const auto expected = plain.find(id);
  ASSERT_EQ(found != nullptr, expected != plain.end()) << id;
  if (found != nullptr) {
    ASSERT_EQ(found->id, id);
    ASSERT_EQ(found->value, expected->second) << id;
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
    Values map;
    std::array<Values::Hint, 4> hints;
    Plain plain;
    const std::uint32_t kind = seed % 4;
    for (int step = 0; step < 400; ++step) {
      const std::uint32_t id = randomId(random, kind);
      const auto action = static_cast<std::uint32_t>(random() % 100);
      if (action < 55) {
        int& value = map.enter({id, step}).value;
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
      ASSERT_EQ(map.find(id, hints[id % hints.size()]), map.find(id));
      ASSERT_NO_FATAL_FAILURE(expectSame(map, plain, randomId(random, kind)));
    }
    for (const auto& [id, value] : plain) ASSERT_NO_FATAL_FAILURE(expectSame(map, plain, id));
  }
}

TEST(IdMap, HoldsTheSmallestAndTheLargestId) {
  Values map;
  EXPECT_EQ(map.find(0), nullptr);
  EXPECT_EQ(map.find(4294967295), nullptr);
  map.enter({0, 1});
  map.enter({4294967295, 2});
  EXPECT_EQ(map.find(0)->value, 1);
  EXPECT_EQ(map.find(4294967295)->value, 2);
  map.erase(0);
  EXPECT_EQ(map.find(0), nullptr);
  EXPECT_EQ(map.find(4294967295)->value, 2);
}

TEST(IdMap, FindsWhatAHintIsWrongAbout) {
  Values map;
  Values::Hint hint;
  EXPECT_EQ(map.find(7, hint), nullptr);
  EXPECT_EQ(map.find(0, hint), nullptr) << "whose hint it seems to be";
  map.enter({7, 70});
  map.enter({8, 80});
  EXPECT_EQ(map.find(7, hint)->value, 70);
  EXPECT_EQ(hint.id, 7U);
  EXPECT_EQ(map.find(7, hint)->value, 70);
  EXPECT_EQ(map.find(8, hint)->value, 80) << "with that of another id";
  map.reserve(1000);
  EXPECT_EQ(map.find(8, hint)->value, 80) << "from before the entries moved";
  EXPECT_EQ(std::as_const(map).find(8, hint)->value, 80);
  map.erase(8);
  EXPECT_EQ(map.find(8, hint), nullptr) << "from before it was taken out";
  map.clear();
  EXPECT_EQ(map.find(8, hint), nullptr) << "of a place that is no more";
}

TEST(IdMap, ADifferentValueIsKeptThroughAHint) {
  Values map;
  map.enter({5, 50});
  Values::Hint hint;
  map.find(5, hint)->value = 51;
  map.find(5, hint)->value += 1;
  EXPECT_EQ(map.find(5)->value, 52);
}

TEST(IdMap, CountsItsEntries) {
  Values map;
  EXPECT_EQ(map.size(), 0U);
  for (const std::uint32_t id : {4U, 5U, 4U}) map.enter({id, 1});
  EXPECT_EQ(map.size(), 2U);
  map.erase(4);
  map.erase(4);
  EXPECT_EQ(map.size(), 1U);
  map.clear();
  EXPECT_EQ(map.size(), 0U);
}

TEST(IdMap, ErasingFromAnEmptyOneIsNothing) {
  Values map;
  map.erase(3);
  EXPECT_EQ(map.find(3), nullptr);
}

TEST(IdMap, KeepsManyIds) {
  IdMap<IdEntry<std::uint32_t, 0xFFFFFFFF>> map;
  map.reserve(9000);  // as many as somebody expected
  for (std::uint32_t i = 0; i < 20000; ++i) map.enter({i * 7919, i});
  for (std::uint32_t i = 0; i < 20000; i += 2) map.erase(i * 7919);
  for (std::uint32_t i = 0; i < 20000; ++i) {
    const auto* const found = map.find(i * 7919);
    ASSERT_EQ(found != nullptr, i % 2 == 1) << i;
    if (found != nullptr) {
      ASSERT_EQ(found->value, i);
    }
  }
}

}  // namespace
}  // namespace Orvane::test
