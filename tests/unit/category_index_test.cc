#include "inventory/category_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "plain_category.h"
#include "seeded_random.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
  // Every second time with the NamedId that came before, if it has the name.
  void insert(std::uint32_t id, const std::string& name) {
    plain_.insert(id, name, nextTrack_);
    const auto last = last_.find(id);
    if (last != last_.end() && last->second->name() == name && below(2) == 0) {
      index_.insert(*last->second, nextTrack_++);
      return;
    }
    if (last != last_.end()) {
      unlike_.insert(id);
      const Names names{{0, std::string(last->second->name())}, {1, name}};
      const LiveOrder order{&names};
      isPlaced_ = isPlaced_ || order(0, 1) || order(1, 0);
    }
    last_[id] = &enter(id, name);
  }
  void clear() {
    index_.clear();
    plain_.clear();
    last_.clear();
    unlike_.clear();
    isPlaced_ = false;
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
    ASSERT_EQ(index_.anyHasSeveral(), !unlike_.empty());
    if (isPlaced_) {
      ASSERT_TRUE(order.starts.empty());
    } else {
      ASSERT_TRUE(
          std::ranges::includes(order.starts, plain_.starts(), {}, &CategoryIndex::Start::place));
      ASSERT_TRUE(order.starts.empty() || order.starts.back().place < order.tracks.size());
    }
    ASSERT_NO_FATAL_FAILURE(expectSameWithIdsApart(order));
    ASSERT_NO_FATAL_FAILURE(expectSameWithIdsLeftOut(order));
    for (std::uint32_t id = 0; id < 12; ++id) {
      ASSERT_EQ(index_.tracksOf(id), plain_.tracksOf(id)) << id;
      ASSERT_EQ(nameOf(index_, id), plain_.nameOf(id)) << id;
    }
  }

  void expectSameWithIdsApart(const CategoryIndex::Order& order) {
    const CategoryIndex::Order apart = index_.inOrderOfIds();
    // Where all is in place already, it stays there.
    ASSERT_TRUE(std::ranges::equal(
        apart.tracks, isPlaced_ ? plain_.tracks() : plain_.tracksWithIdsApart(unlike_)));
    if (isPlaced_) return;
    std::set<std::uint32_t> alone;
    std::set<std::uint32_t> alike;
    for (std::uint32_t id = 0; id < 12; ++id) {
      if (last_.count(id) == 0) continue;
      if (plain_.hasNameToItself(id)) alone.insert(id);
      if (plain_.areAllAlike(id, unlike_)) alike.insert(id);
    }
    for (std::size_t i = 0; i < apart.starts.size(); ++i) {
      const CategoryIndex::Start& start = apart.starts[i];
      const std::uint32_t end = i + 1 < apart.starts.size()
                                    ? apart.starts[i + 1].place
                                    : static_cast<std::uint32_t>(apart.tracks.size());
      const std::uint32_t id = plain_.idOf(apart.tracks[start.place]);
      ASSERT_EQ(start.isOnly, alone.count(id) + alike.count(id) > 0);
      if (!start.isOnly) continue;
      ASSERT_EQ(end - start.place, plain_.tracksOf(id).size());
      ASSERT_EQ(start.position, index_.positionOf(id));
      ASSERT_EQ(start.hasOneNamedId, unlike_.count(id) == 0);
    }
    for (const CategoryIndex::Start& start : order.starts) {
      ASSERT_EQ(start.isOnly, alone.count(plain_.idOf(order.tracks[start.place])) > 0);
    }
  }

  // Some ids by the right number of entries, others by a wrong one.
  void expectSameWithIdsLeftOut(const CategoryIndex::Order& order) {
    std::vector<std::uint32_t> counts(below(index_.positionCount() + std::size_t{1}));
    std::vector<std::uint32_t> tracks = plain_.tracks();
    std::vector<std::uint32_t> starts;  // positions of those left out
    for (std::uint32_t id = 0; id < 12; ++id) {
      const std::uint32_t position = index_.positionOf(id);
      if (position >= counts.size()) continue;
      const std::vector<std::uint32_t> its = plain_.tracksOf(id);
      counts[position] = static_cast<std::uint32_t>(its.size()) + (below(3) == 0 ? 1 : 0);
      const bool isOnly = std::ranges::any_of(order.starts, [&](const CategoryIndex::Start& start) {
        return start.isOnly && start.position == position;
      });
      if (!isOnly || counts[position] != its.size()) continue;
      std::erase_if(tracks, [&](std::uint32_t track) { return std::ranges::count(its, track); });
      starts.push_back(position);
    }
    const CategoryIndex::Order rest = index_.inOrder(counts);
    ASSERT_TRUE(std::ranges::equal(rest.tracks, tracks));
    // All starts are there, and tell of those left out, which take no place.
    ASSERT_EQ(rest.starts.size(), order.starts.size());
    std::uint32_t leftOut = 0;
    for (std::size_t i = 0; i < order.starts.size(); ++i) {
      const CategoryIndex::Start& start = rest.starts[i];
      ASSERT_EQ(start.place, order.starts[i].place - leftOut);
      ASSERT_EQ(start.position, order.starts[i].position);
      ASSERT_EQ(start.isLeftOut, start.isOnly && std::ranges::count(starts, start.position) == 1);
      if (start.isLeftOut) leftOut += counts[start.position];
    }
  }

  std::mt19937 random_ = seededRandom(1);
  PlainCategory plain_;
  std::map<std::uint32_t, const NamedId*> last_;  // by id
  std::set<std::uint32_t> unlike_;                // ids that came with several
  bool isPlaced_ = false;                         // the names don't determine the order any more
};

TEST_F(CategoryIndexChanges, OfNamesManyTimesOver) {
  for (std::uint32_t seed = 0; seed < 800; ++seed) {
    SCOPED_TRACE(seed);
    random_.seed(seed);
    clear();
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
    clear();
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
    clear();
    nextTrack_ = 0;
    const std::size_t names = 1 + below(12);
    for (std::uint32_t steps = below(60); steps-- > 0;) {
      const std::uint32_t step = below(20);
      if (step == 0) {
        const std::uint32_t id = below(12);
        index_.eraseId(id);
        plain_.eraseId(id);
        isPlaced_ = true;
      } else if (step < 4) {
        std::vector<std::uint32_t> tracks;
        for (std::uint32_t track = 0; track < nextTrack_; ++track) {
          if (below(8) == 0) tracks.push_back(track);
        }
        std::shuffle(tracks.begin(), tracks.end(), random_);
        index_.eraseTracks(tracks);
        plain_.eraseTracks(tracks);
        isPlaced_ = true;
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
  for (const CategoryIndex::Start& start : order.starts) {
    starts.push_back(std::to_string(start.place) + (start.isOnly ? "!" : ""));
  }
  EXPECT_THAT(starts, ElementsAre("0!", "1!", "3!", "4", "5", "6"));
}

TEST_F(NamedCategory, TellsWhichIdsCameWithOneEntryOnly) {
  const NamedId& one = enter(1, "one");
  const NamedId& two = enter(2, "two");
  index_.insert(one, nextTrack_++);
  enter(2, "two");
  index_.insert(two, nextTrack_++);
  enter(3, "three");
  const auto alike = [&] {
    std::vector<std::uint32_t> positions;
    for (const CategoryIndex::Start& start : index_.inOrder().starts) {
      if (start.hasOneNamedId) positions.push_back(start.position);
    }
    return positions;
  };
  EXPECT_THAT(alike(), ElementsAre(0, 2));
  EXPECT_EQ(index_.positionOf(1), 0U);
  EXPECT_EQ(index_.positionOf(3), 2U);
  EXPECT_EQ(index_.positionOf(4), index_.positionCount());
  index_.clear();
  enter(7, "seven");
  enter(8, "eight");
  EXPECT_THAT(alike(), ElementsAre(1, 0)) << "nothing is left of the earlier ids";
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
