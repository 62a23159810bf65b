#include "tree/hash_index.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "seeded_random.h"

namespace Orvane::test {
namespace {

struct Entry {
  std::uint32_t hash = 0;
  std::uint32_t key = 0;
  int value = -1;

  bool isFree() const { return value < 0; }
};

class HashIndexOfKeys : public ::testing::Test {
 protected:
  // The value under the key, which is `value` if there was none.
  int enter(std::uint32_t hash, std::uint32_t key, int value) {
    return index_
        .findOrInsert({hash, key, value}, [&](const Entry& entry) { return entry.key == key; })
        .value;
  }

  HashIndex<Entry> index_;
};

TEST_F(HashIndexOfKeys, FindsWhatWasEnteredFirst) {
  std::mt19937 random = seededRandom(3);
  std::map<std::uint32_t, int> plain;
  for (int i = 0; i < 20'000; ++i) {
    const auto key = static_cast<std::uint32_t>(random() % 5000);
    const int expected = plain.emplace(key, i).first->second;
    // Few hashes for many keys, the highest among them: entries stand all around the table's end.
    ASSERT_EQ(enter(0xFFFFFFF0 + key % 700, key, i), expected) << key;
  }
}

TEST_F(HashIndexOfKeys, ComparesOnlyWhatHasTheHash) {
  for (std::uint32_t i = 0; i < 40; ++i) {
    index_.findOrInsert({i << 16, i, 0}, [](const Entry&) {
      ADD_FAILURE() << "a key with another hash was compared";
      return false;
    });
  }
}

TEST_F(HashIndexOfKeys, TellsWhatStandsWhereAHashBelongs) {
  EXPECT_TRUE(index_.likely(5).isFree()) << "there are no places yet";
  index_.expect(5);
  enter(5, 50, 1);
  EXPECT_EQ(index_.likely(5).key, 50U);
  EXPECT_TRUE(index_.likely(6).isFree());
  enter(5, 51, 2);
  EXPECT_EQ(index_.likely(5).key, 50U) << "the first of that hash";
  EXPECT_EQ(index_.likely(6).key, 51U) << "the second, which took the next place";
}

TEST_F(HashIndexOfKeys, KeepsItsEntriesWhenItGrows) {
  for (std::uint32_t key = 0; key < 100; ++key) enter(key * 7, key, static_cast<int>(key));
  index_.reserve(5000);
  for (std::uint32_t key = 0; key < 100; ++key) {
    EXPECT_EQ(enter(key * 7, key, 1000), static_cast<int>(key));
  }
}

TEST_F(HashIndexOfKeys, ForgetsAllWhenCleared) {
  enter(7, 1, 10);
  index_.clear();
  EXPECT_TRUE(index_.likely(7).isFree());
  EXPECT_EQ(enter(7, 1, 20), 20);
}

}  // namespace
}  // namespace Orvane::test
