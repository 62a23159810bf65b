#include "tree/key_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <ostream>
#include <span>
#include <vector>

#include "seeded_random.h"

namespace Orvane::test {
namespace {

struct Element {
  std::uint64_t key;
  std::size_t position;  // before
  bool operator==(const Element&) const = default;
};

void PrintTo(const Element& element, std::ostream* out) {
  *out << element.key << " from " << element.position;
}

void expectSortedAsByStdSort(const std::vector<std::uint64_t>& keys) {
  std::vector<Element> elements;
  for (const std::uint64_t key : keys) elements.push_back({key, elements.size()});
  std::vector<Element> expected = elements;
  std::sort(expected.begin(), expected.end(),
            [](const Element& a, const Element& b) { return a.key < b.key; });
  sortByKey(std::span(elements), [](const Element& element) { return element.key; });
  ASSERT_EQ(elements, expected);
}

void expectSorted(std::vector<std::uint64_t> keys) {
  std::vector<std::uint64_t> expected = keys;
  std::sort(expected.begin(), expected.end());
  sortByKey<Ties::kInAnyOrder>(std::span(keys), [](std::uint64_t key) { return key; });
  ASSERT_EQ(keys, expected);
}

TEST(KeySort, OfRandomKeys) {
  auto random = seededRandom(1);
  for (std::size_t round = 0; round < 20'000; ++round) {
    SCOPED_TRACE(round);
    const std::size_t count = random() % (round % 10 == 0 ? 2'000 : 60);
    const std::size_t different = 1 + random() % (count + 1);
    std::vector<std::uint64_t> keys(count);
    for (std::uint64_t& key : keys) key = random() % different;
    ASSERT_NO_FATAL_FAILURE(expectSortedAsByStdSort(keys));
    ASSERT_NO_FATAL_FAILURE(expectSorted(keys));
  }
}

TEST(KeySort, OfRegularKeys) {
  for (std::uint64_t count = 0; count < 1'500; count += 1 + count / 40) {
    SCOPED_TRACE(count);
    for (const std::uint64_t step : {1U, 2U, 7U, 64U, 10'000U}) {
      std::vector<std::uint64_t> up;
      std::vector<std::uint64_t> down;
      std::vector<std::uint64_t> inTurn;
      std::vector<std::uint64_t> upAndDown;
      for (std::uint64_t i = 0; i < count; ++i) {
        up.push_back(i / step);
        down.push_back((count - i) / step);
        inTurn.push_back(i % step);
        upAndDown.push_back(std::min(i, count - i) / step);
      }
      for (const auto& keys : {up, down, inTurn, upAndDown}) {
        ASSERT_NO_FATAL_FAILURE(expectSortedAsByStdSort(keys));
        ASSERT_NO_FATAL_FAILURE(expectSorted(keys));
      }
    }
  }
}

TEST(KeySort, OfKeysAtTheEndsOfTheirRange) {
  std::vector<std::uint64_t> keys;
  for (std::uint64_t i = 0; i < 300; ++i) keys.push_back(i % 3 == 0 ? 0 - i : i);
  expectSortedAsByStdSort(keys);
}

// Keys that std::sort finds the hardest: they are made up while it compares, each as far from the
// middle as can be.
std::vector<std::uint64_t> hardestKeys(std::size_t count) {
  std::vector<std::uint64_t> keys(count, count);
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), 0);
  std::uint64_t next = 0;
  std::size_t pivot = 0;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    if (keys[a] == count && keys[b] == count) keys[a == pivot ? a : b] = next++;
    if (keys[a] == count) {
      pivot = a;
    } else if (keys[b] == count) {
      pivot = b;
    }
    return keys[a] < keys[b];
  });
  return keys;
}

TEST(KeySort, OfKeysThatHardlyPart) {
  for (const std::size_t count : {17U, 40U, 500U, 3'000U, 20'000U}) {
    SCOPED_TRACE(count);
    std::vector<std::uint64_t> keys = hardestKeys(count);
    ASSERT_NO_FATAL_FAILURE(expectSortedAsByStdSort(keys));
    for (std::uint64_t& key : keys) key /= 2;
    ASSERT_NO_FATAL_FAILURE(expectSortedAsByStdSort(keys));
  }
}

}  // namespace
}  // namespace Orvane::test
