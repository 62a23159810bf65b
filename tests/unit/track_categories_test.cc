#include "inventory/track_categories.h"

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
#include <vector>

#include "plain_category.h"
#include "seeded_random.h"

namespace Orvane::test {
namespace {

// One of the categories, and what it should be: each has entries of its own.
class Compared {
 public:
  explicit Compared(CategoryIndex& index) : index_(index) {}

  void insert(const NamedId& entry, std::uint32_t track) {
    if (entry.id() == 0) return;
    plain_.insert(entry.id(), std::string(entry.name()), track);
    const auto [last, isNew] = last_.emplace(entry.id(), &entry);
    if (isNew || last->second == &entry) return;
    unlike_.insert(entry.id());
    const Names names{{0, std::string(last->second->name())}, {1, std::string(entry.name())}};
    const LiveOrder order{&names};
    isPlaced_ = isPlaced_ || order(0, 1) || order(1, 0);
    last->second = &entry;
  }
  void eraseTracks(const std::vector<std::uint32_t>& tracks) {
    index_.eraseTracks(tracks);
    plain_.eraseTracks(tracks);
    isPlaced_ = true;
  }
  void eraseId(std::uint32_t id) {
    index_.eraseId(id);
    plain_.eraseId(id);
    isPlaced_ = true;
  }
  // When the index has been cleared.
  void forget() {
    plain_.clear();
    last_.clear();
    unlike_.clear();
    isPlaced_ = false;
  }
  void clear() {
    index_.clear();
    forget();
  }

  void expectSame(std::uint32_t ids) const {
    ASSERT_TRUE(std::ranges::equal(index_.tracksInOrder(), plain_.tracks()));
    ASSERT_TRUE(
        std::ranges::equal(index_.inOrderOfIds().tracks,
                           isPlaced_ ? plain_.tracks() : plain_.tracksWithIdsApart(unlike_)));
    for (std::uint32_t id = 1; id < ids; ++id) {
      ASSERT_EQ(index_.tracksOf(id), plain_.tracksOf(id)) << id;
      const auto last = last_.find(id);
      ASSERT_EQ(index_.find(id), last == last_.end() ? nullptr : last->second) << id;
    }
    ASSERT_NO_FATAL_FAILURE(expectSameWithOneLeftOut(ids));
  }

 private:
  void expectSameWithOneLeftOut(std::uint32_t ids) const {
    for (std::uint32_t id = 1; id < ids; ++id) {
      const std::vector<std::uint32_t> its = plain_.tracksOf(id);
      const std::uint32_t position = index_.positionOf(id);
      if (position == index_.positionCount() || its.empty()) continue;
      std::vector<std::uint32_t> counts(position + std::size_t{1});
      counts[position] = static_cast<std::uint32_t>(its.size());
      std::vector<std::uint32_t> rest = plain_.tracks();
      if (!isPlaced_ && plain_.hasNameToItself(id)) {
        std::erase_if(rest, [&](std::uint32_t track) { return std::ranges::count(its, track); });
      }
      ASSERT_TRUE(std::ranges::equal(index_.inOrder(counts).tracks, rest)) << id;
    }
  }

  CategoryIndex& index_;
  PlainCategory plain_;
  std::map<std::uint32_t, const NamedId*> last_;  // by id
  std::set<std::uint32_t> unlike_;                // ids that came with several
  bool isPlaced_ = false;                         // the names don't determine the order any more
};

class RandomTrackCategories : public ::testing::Test {
 protected:
  static constexpr std::uint32_t kIds = 9;  // 0 among them

  // `steadiness` of 1 for names that change all the time.
  void startAnew(std::uint32_t seed) {
    random_.seed(seed);
    categories_.clear();
    for (Compared& category : compared_) category.forget();
    namedIds_.clear();
    albums_.clear();
    tracks_.clear();
    steadiness_ = 1 + below(60);
  }

  void add() {
    const Album& album =
        albums_.empty() || below(3) == 0 ? makeAlbum() : albums_[below(albums_.size())];
    Track& track = tracks_.emplace_back();
    track.setAlbum(album);
    const std::uint32_t number = nextNumber_++;
    categories_.add(track, number);
    compared_[0].insert(album.artist(), number);
    compared_[1].insert(album.genre(), number);
    compared_[2].insert(album, number);
  }

  Compared& any() { return compared_.at(below(compared_.size())); }

  // Of tracks that came not long ago, and of some that never did.
  std::vector<std::uint32_t> someNumbers() {
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t count = below(4); count-- > 0;) {
      const std::uint32_t number = nextNumber_ - std::min(nextNumber_, below(20));
      if (std::ranges::count(numbers, number) == 0) numbers.push_back(number);
    }
    return numbers;
  }

  void expectSame() {
    for (std::size_t i = 0; i < compared_.size(); ++i) {
      SCOPED_TRACE(i);
      ASSERT_NO_FATAL_FAILURE(compared_.at(i).expectSame(kIds));
    }
  }

  std::uint32_t below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

 private:
  // Mostly the name that goes with the id, some of which have one name.
  std::string randomName(std::uint32_t id) {
    std::string name(1, static_cast<char>('k' - id % 5));
    if (below(steadiness_) == 0) name = below(2) == 0 ? std::string(1, name[0] - 'a' + 'A') : "j";
    return name;
  }
  const NamedId& makeNamedId() {
    const std::uint32_t id = below(kIds);
    const std::string name = randomName(id);
    const auto same = std::ranges::find_if(
        namedIds_, [&](const NamedId& one) { return one.id() == id && one.name() == name; });
    if (same != namedIds_.end() && below(steadiness_) != 0) return *same;
    return namedIds_.emplace_back(id, texts_.emplace_back(name));
  }
  const Album& makeAlbum() {
    const std::uint32_t id = below(kIds);
    const std::string& name = texts_.emplace_back(randomName(id));
    return albums_.emplace_back(id, name, makeNamedId(), makeNamedId());
  }

  std::mt19937 random_ = seededRandom(1);
  std::uint32_t steadiness_ = 1;
  std::deque<std::string> texts_;
  std::deque<NamedId> namedIds_;
  std::deque<Album> albums_;
  std::deque<Track> tracks_;
  std::uint32_t nextNumber_ = 1;
  TrackCategories categories_;
  std::array<Compared, 3> compared_{Compared(categories_.artists()), Compared(categories_.genres()),
                                    Compared(categories_.albums())};
};

TEST_F(RandomTrackCategories, AreAsIfEachHadItsOwnEntries) {
  for (std::uint32_t seed = 0; seed < 600; ++seed) {
    SCOPED_TRACE(seed);
    startAnew(seed);
    for (std::uint32_t count = below(80); count-- > 0;) add();
    ASSERT_NO_FATAL_FAILURE(expectSame());
  }
}

TEST_F(RandomTrackCategories, GoOnWhenEntriesOrACategoryAreGone) {
  for (std::uint32_t seed = 0; seed < 600; ++seed) {
    SCOPED_TRACE(seed);
    startAnew(seed);
    for (std::uint32_t change = 0; change < 4; ++change) {
      for (std::uint32_t count = below(40); count-- > 0;) add();
      switch (below(3)) {
        case 0:
          any().eraseTracks(someNumbers());
          break;
        case 1:
          any().eraseId(1 + below(kIds - 1));
          break;
        default:
          any().clear();
      }
      for (std::uint32_t count = below(40); count-- > 0;) add();
      ASSERT_NO_FATAL_FAILURE(expectSame());
    }
  }
}

}  // namespace
}  // namespace Orvane::test
