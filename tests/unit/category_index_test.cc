#include "inventory/category_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "seeded_random.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Names by id, and an order that looks them up each time, letter by letter.
using Names = std::map<std::uint32_t, std::string>;

struct LiveOrder {
  const Names* names;
  bool operator()(std::uint32_t a, std::uint32_t b) const {
    const std::string& left = names->at(a);
    const std::string& right = names->at(b);
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char x, char y) { return letter(x) < letter(y); });
  }

 private:
  static int letter(char c) {
    const auto byte = static_cast<signed char>(c);
    return byte >= 'a' && byte <= 'z' ? byte - 32 : byte;
  }
};

// The multimap that defines the order.
class PlainCategory {
 public:
  void insert(std::uint32_t id, const std::string& name, std::uint32_t track) {
    names_[id] = name;
    entries_.emplace(id, track);
  }
  void eraseTracks(const std::vector<std::uint32_t>& tracks) {
    // One after the other: the order in which entries go decides what shape is left.
    for (const std::uint32_t track : tracks) {
      std::erase_if(entries_, [=](const auto& entry) { return entry.second == track; });
    }
  }
  void eraseId(std::uint32_t id) {
    std::erase_if(entries_, [=](const auto& entry) { return entry.first == id; });
  }
  void clear() {
    entries_.clear();
    names_.clear();
  }

  std::vector<std::uint32_t> tracks() const {
    std::vector<std::uint32_t> result;
    for (const auto& [id, track] : entries_) result.push_back(track);
    return result;
  }
  // Places in the order where another id begins.
  std::vector<std::uint32_t> starts() const {
    std::vector<std::uint32_t> result;
    std::uint32_t place = 0;
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry, ++place) {
      if (place == 0 || std::prev(entry)->first != entry->first) result.push_back(place);
    }
    return result;
  }
  std::vector<std::uint32_t> tracksOf(std::uint32_t id) const {
    std::vector<std::uint32_t> result;
    for (const auto& [entryId, track] : entries_) {
      if (entryId == id) result.push_back(track);
    }
    return result;
  }
  std::string nameOf(std::uint32_t id) const { return names_.count(id) == 0 ? "" : names_.at(id); }

 private:
  Names names_;
  std::multimap<std::uint32_t, std::uint32_t, LiveOrder> entries_{LiveOrder{&names_}};
};

std::vector<std::uint32_t> tracksInOrder(const CategoryIndex& index) {
  const auto tracks = index.tracksInOrder();
  return {tracks.begin(), tracks.end()};
}

std::string_view nameOf(const CategoryIndex& index, std::uint32_t id) {
  const NamedId* const found = index.find(id);
  return found == nullptr ? std::string_view() : found->name();
}

class NamedCategory : public ::testing::Test {
 protected:
  // Of the next track. What is entered has to stay where it is.
  const NamedId& enter(std::uint32_t id, const std::string& name) {
    const NamedId& entry = entries_.emplace_back(id, names_.emplace_back(name));
    index_.insert(entry, nextTrack_++);
    return entry;
  }

  CategoryIndex index_;
  std::deque<std::string> names_;
  std::deque<NamedId> entries_;
  std::uint32_t nextTrack_ = 0;
};

class CategoryIndexChanges : public NamedCategory {
 protected:
  void insert(std::uint32_t id, const std::string& name) {
    plain_.insert(id, name, nextTrack_);
    enter(id, name);
  }

  std::uint32_t below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

  std::string randomName(std::size_t alphabet) {
    static const std::array<std::string, 15> kNames{
        "m",           "a",  "z",         "M",        "A",  "",     "long name B",
        "Long Name a", "ab", "long name", "\xC3\xA9", "aB", "\x80", std::string("a\0", 2),
        "am"};
    return kNames.at(below(std::min(alphabet, kNames.size())));
  }

  void expectSame() {
    ASSERT_EQ(tracksInOrder(index_), plain_.tracks());
    const CategoryIndex::Order order = index_.inOrder();
    ASSERT_TRUE(std::ranges::equal(order.tracks, plain_.tracks()));
    ASSERT_TRUE(
        std::ranges::includes(order.starts, plain_.starts(), {}, &CategoryIndex::Start::place));
    ASSERT_TRUE(order.starts.empty() || order.starts.back().place < order.tracks.size());
    for (std::uint32_t id = 0; id < 12; ++id) {
      ASSERT_EQ(index_.tracksOf(id), plain_.tracksOf(id)) << id;
      ASSERT_EQ(nameOf(index_, id), plain_.nameOf(id)) << id;
    }
  }

  std::mt19937 random_ = seededRandom(1);
  PlainCategory plain_;
};

TEST_F(CategoryIndexChanges, OfNamesManyTimesOver) {
  for (std::uint32_t seed = 0; seed < 800; ++seed) {
    SCOPED_TRACE(seed);
    random_.seed(seed);
    index_.clear();
    plain_.clear();
    const std::size_t ids = 1 + below(11);
    const std::size_t names = 1 + below(12);
    for (std::uint32_t entries = below(120); entries-- > 0;) insert(below(ids), randomName(names));
    ASSERT_NO_FATAL_FAILURE(expectSame());
  }
}

TEST_F(CategoryIndexChanges, OfNamesAfterSteadyOnes) {
  for (std::uint32_t seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    random_.seed(seed);
    index_.clear();
    plain_.clear();
    for (std::uint32_t entries = below(200); entries-- > 0;) {
      const std::uint32_t id = below(12);
      insert(id, std::string(1, static_cast<char>('k' - id % 5)));
    }
    ASSERT_NO_FATAL_FAILURE(expectSame());
    for (std::uint32_t entries = below(30); entries-- > 0;) insert(below(12), randomName(15));
    ASSERT_NO_FATAL_FAILURE(expectSame());
  }
}

TEST_F(CategoryIndexChanges, OfNamesWithRemovalsInBetween) {
  for (std::uint32_t seed = 0; seed < 800; ++seed) {
    SCOPED_TRACE(seed);
    random_.seed(seed);
    index_.clear();
    plain_.clear();
    nextTrack_ = 0;
    const std::size_t names = 1 + below(12);
    for (std::uint32_t steps = below(60); steps-- > 0;) {
      const std::uint32_t step = below(20);
      if (step == 0) {
        const std::uint32_t id = below(12);
        index_.eraseId(id);
        plain_.eraseId(id);
      } else if (step < 4) {
        std::vector<std::uint32_t> tracks;
        for (std::uint32_t track = 0; track < nextTrack_; ++track) {
          if (below(8) == 0) tracks.push_back(track);
        }
        std::shuffle(tracks.begin(), tracks.end(), random_);
        index_.eraseTracks(tracks);
        plain_.eraseTracks(tracks);
      } else {
        insert(below(12), randomName(names));
      }
    }
    ASSERT_NO_FATAL_FAILURE(expectSame());
  }
}

// The entries fill many pieces of memory, which don't all stand together.
TEST_F(CategoryIndexChanges, OfNamesAfterManyEntries) {
  for (int entries = 0; entries < 20'000; ++entries) {
    const std::uint32_t id = below(12);
    insert(id, std::string(1, static_cast<char>('k' - id % 5)));
  }
  ASSERT_NO_FATAL_FAILURE(expectSame());
  insert(3, "another");
  ASSERT_NO_FATAL_FAILURE(expectSame());
}

TEST(CategoryIndex, OfNothingHasNothing) {
  const CategoryIndex index;
  EXPECT_THAT(index.tracksInOrder(), IsEmpty());
  EXPECT_THAT(index.tracksOf(1), IsEmpty());
  EXPECT_EQ(index.find(1), nullptr);
}

TEST_F(NamedCategory, FindsWhatAnIdCameWithLast) {
  const NamedId& one = enter(1, "One");
  const NamedId& far = enter(257, "Far");
  EXPECT_EQ(index_.find(1), &one);
  const NamedId& same = enter(1, "One");
  EXPECT_EQ(index_.find(1), &same);
  EXPECT_EQ(index_.find(257), &far);
  EXPECT_EQ(index_.find(513), nullptr);
}

TEST_F(NamedCategory, ErasingLeavesNames) {
  const NamedId& one = enter(1, "One");
  index_.eraseId(1);
  EXPECT_THAT(index_.tracksInOrder(), IsEmpty());
  EXPECT_EQ(index_.find(1), &one);
  index_.clear();
  EXPECT_EQ(index_.find(1), nullptr);
}

TEST_F(NamedCategory, SameNameInAnotherCaseMovesNothing) {
  enter(1, "beta");
  enter(2, "alpha");
  enter(1, "BETA");
  EXPECT_THAT(index_.tracksInOrder(), ElementsAre(1, 0, 2));
  EXPECT_EQ(nameOf(index_, 1), "BETA");
}

TEST_F(NamedCategory, EntriesWhoseNameNoOtherIdHasStartOnce) {
  enter(1, "beta");
  enter(2, "alpha");
  enter(1, "BETA");
  enter(3, "gamma");
  enter(4, "Gamma");
  enter(3, "gamma");
  enter(5, "delta");
  const CategoryIndex::Order order = index_.inOrder();
  EXPECT_THAT(order.tracks, ElementsAre(1, 0, 2, 6, 3, 4, 5));
  std::vector<std::string> starts;
  for (const auto& [place, isOnly] : order.starts) {
    starts.push_back(std::to_string(place) + (isOnly ? "!" : ""));
  }
  EXPECT_THAT(starts, ElementsAre("0!", "1!", "3!", "4", "5", "6"));
}

TEST_F(NamedCategory, EmptyNamesComeFirst) {
  enter(1, "a");
  enter(2, "");
  EXPECT_THAT(index_.tracksInOrder(), ElementsAre(1, 0));
  enter(1, "");
  EXPECT_THAT(index_.tracksInOrder(), ElementsAre(1, 0, 2)) << "what is in place stays there";
  EXPECT_EQ(nameOf(index_, 1), "");
}

TEST(CategoryIndex, ByNumberTakesNoNames) {
  CategoryIndex index;
  std::uint32_t track = 0;
  for (const std::uint32_t id : {10U, 9U, 4294967295U, 9U, 256U, 1U, 65536U}) {
    index.insert(id, track++);
  }
  EXPECT_THAT(index.tracksInOrder(), ElementsAre(5, 1, 3, 0, 4, 6, 2));
  EXPECT_EQ(index.find(9), nullptr);
  const std::vector<std::uint32_t> tracks{1, 2};
  index.eraseTracks(tracks);
  EXPECT_THAT(index.tracksInOrder(), ElementsAre(5, 3, 0, 4, 6));
  index.insert(5, 7);
  EXPECT_THAT(index.tracksInOrder(), ElementsAre(5, 7, 3, 0, 4, 6));
}

}  // namespace
}  // namespace Orvane::test
