// What costs no memory as long as nothing happens that needs it. The results would be the same.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "allocation_probe.h"
#include "inventory/category_entries.h"
#include "inventory/category_index.h"
#include "inventory/line_reader.h"
#include "inventory/media_id_index.h"
#include "inventory/menu_builder.h"
#include "inventory/track_batch.h"
#include "inventory/track_categories.h"
#include "inventory/track_index.h"
#include "test_support.h"
#include "track_lists.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;

TEST(InventoryMemory, EntriesOfTracksThatCountUpTakeTheirPlacesOnly) {
  CategoryEntries entries;
  entries.add(1, 7);
  const LimitedAllocations none(0);
  for (std::uint32_t track = 8; track < 100; ++track) entries.add(2, track);
  EXPECT_EQ(entries.size(), 93U);
}

void expectRenamedWithoutMemory(std::string_view before, std::string_view after) {
  const NamedId first(5, before);
  const NamedId second(5, after);
  CategoryIndex index;
  index.insert(first, 1);
  const LimitedAllocations none(0);
  index.insert(second, 2);
  EXPECT_EQ(index.find(5), &second);
}

TEST(InventoryMemory, ANameThatStaysIsNotFoldedAgain) {
  const std::string name(40, 'x');
  const std::string copy = name;
  expectRenamedWithoutMemory(name, copy);
}

TEST(InventoryMemory, ANameThatKeepsItsPlaceMovesNoEntry) {
  expectRenamedWithoutMemory("name", "NAME");
}

// Wherever memory runs out: the id may be known by then.
TEST(InventoryMemory, AnIdWithoutItsFirstEntryIsNotThereYet) {
  const NamedId late(7, "name");
  const NamedId other(8, "name");
  for (std::ptrdiff_t allowed = 0; allowed < 12; ++allowed) {
    SCOPED_TRACE(allowed);
    CategoryIndex index;
    bool isEntered = true;
    try {
      const LimitedAllocations few(allowed);
      index.insert(late, 100);
    } catch (const std::bad_alloc&) {
      isEntered = false;
    }
    index.insert(other, 0);
    index.insert(late, 101);
    const auto order = index.inOrderOfIds();
    if (isEntered) {
      EXPECT_THAT(order.tracks, ElementsAre(100, 101, 0));
    } else {
      EXPECT_THAT(order.tracks, ElementsAre(0, 101));
    }
  }
}

// Wherever memory runs out, as long as no name changes its place: a track has all its entries or
// none, and what comes later its own.
TEST(InventoryMemory, ATrackThatFindsNoneIsInNoCategory) {
  const NamedId artist(1, "a");
  const NamedId other(2, "a");
  const NamedId genre(1, "g");
  const Album first(1, "album", artist, genre);
  const Album second(1, "ALBUM", other, genre);
  std::ptrdiff_t failures = 0;
  for (const std::size_t failing : {0U, 1U, 2U, 3U, 4U}) {
    for (std::ptrdiff_t allowed = 0; allowed < 24; ++allowed) {
      SCOPED_TRACE(allowed);
      TrackCategories categories;
      std::vector<std::uint32_t> entered;
      std::vector<std::uint32_t> ofArtist;
      const std::vector<const Album*> albums = {&first, &second, &second, &first, &first, &second};
      for (std::size_t i = 0; i < albums.size(); ++i) {
        Track track;
        track.setAlbum(*albums[i]);
        const auto number = static_cast<std::uint32_t>(i * i);
        try {
          const LimitedAllocations few(i == failing ? allowed : 1'000'000);
          categories.add(track, number);
        } catch (const std::bad_alloc&) {
          ++failures;
          for (int step = 0; step < 3; ++step) categories.expect({0, 1, 1, 1}, step);
          continue;
        }
        entered.push_back(number);
        if (albums[i] == &first) ofArtist.push_back(number);
      }
      for (const CategoryIndex* category :
           {&categories.artists(), &categories.genres(), &categories.albums()}) {
        EXPECT_TRUE(std::ranges::equal(category->tracksInOrder(), entered));
      }
      EXPECT_EQ(categories.artists().tracksOf(1), ofArtist);
    }
  }
  EXPECT_GT(failures, 20);
}

// A menu that has leaves has those of its tracks.
TEST(InventoryMemory, LackOfItLeavesNoMenuWithOthersNumbers) {
  std::ptrdiff_t failures = 0;
  for (std::ptrdiff_t allowed = 0; failures == allowed; ++allowed) {
    TrackManager manager;
    for (std::uint32_t id = 1; id <= 40; ++id) addSong(manager, id, "song", id, "album");
    MenuTree tree;
    MenuNode& root = *tree.getRoot();
    try {
      const LimitedAllocations few(allowed);
      addAlbumsMenu(manager, tree, root);
    } catch (const std::bad_alloc&) {
      ++failures;
    }
    std::for_each(root.childrenBegin(), root.childrenEnd(), [&](const MenuNode* album) {
      if (album->childCount() == 0) return;
      ASSERT_EQ(album->trackNumbers().size(), 1U);
      ASSERT_EQ(album->trackNumbers()[0], album->getMediaId()) << allowed;
    });
  }
  EXPECT_GT(failures, 5);
}

TEST(InventoryMemory, TheListOfTracksIsNoOtherOneUntilOneIsWithdrawn) {
  Track first;
  first.setMediaId(1);
  Track second;
  second.setMediaId(2);
  TrackIndex index;
  index.expect(2);
  index.add(first);
  const LimitedAllocations none(0);
  EXPECT_TRUE(index.add(second));
}

// Whichever allocation fails, also of those by which it becomes a table.
TEST(InventoryMemory, MediaIdsStayAsTheyWereWithoutMemory) {
  for (const std::uint32_t count : {0U, 1U, 511U, 512U, 5000U}) {
    for (const std::uint32_t next : {2 * count + 2, 1U}) {
      for (std::ptrdiff_t allowed = 0; allowed < 6; ++allowed) {
        MediaIdIndex index;
        for (std::uint32_t i = 1; i <= count; ++i) index.enter(2 * i, i);
        index.expectCount(3 * count);
        try {
          const LimitedAllocations few(allowed);
          index.enter(next, count + 1);
        } catch (const std::bad_alloc&) {
          EXPECT_FALSE(index.hasEntry(next));
        }
        EXPECT_EQ(index.enter(next, count + 1), count + 1);
        EXPECT_EQ(index.enter(2 * count + 4, count + 2), count + 2);
        for (std::uint32_t i = 1; i <= count; ++i) ASSERT_EQ(index.find(2 * i), i) << count;
        EXPECT_EQ(index.find(next), count + 1);
      }
    }
  }
}

TEST(InventoryMemory, AFileOfShortLinesIsReadInOneBlock) {
  const TempDir dir;
  std::string text;
  while (text.size() < 1'000'000) text += "a line\n";
  writeFile(dir / "file", text);
  const std::string path = dir / "file";
  LineReader reader(path.c_str());
  std::size_t lines = 0;
  const LimitedAllocations block(1);
  for (; !reader.atEnd(); ++lines) reader.next();
  EXPECT_EQ(lines, text.size() / 7 + 1);
}

class TrackBatches : public ::testing::Test {
 protected:
  // More than the reader has in memory together.
  static std::string writtenTo(const std::string& path) {
    std::string text = "9|First|8|One|7|Two|6|Three|1\n";
    while (text.size() < 500'000) text += "1|Title|2|Artist|3|Album|4|Genre|5\n";
    writeFile(path, text);
    return path;
  }

  void read(TrackBatch& batch, std::size_t lines, bool withCopy) {
    batch.take(reader_, lines, withCopy);
    batch.parse(titles_);
  }

  TitleStore titles_;
  const TempDir dir_;
  const std::string path_ = writtenTo(dir_ / "tracks");
  LineReader reader_{path_.c_str()};
};

TEST_F(TrackBatches, WithoutACopyTakeNoMemoryForTexts) {
  TrackBatch batch;
  read(batch, 2, false);
  const LimitedAllocations none(0);
  read(batch, 2, false);
  ASSERT_EQ(batch.texts().size(), 2U);
  EXPECT_EQ(batch.texts()[1].title, "Title");
}

TEST_F(TrackBatches, WithACopyKeepTheirTextsWhileTheReaderGoesOn) {
  TrackBatch kept;
  read(kept, 1, true);
  for (TrackBatch later; !reader_.atEnd();) read(later, 1000, false);
  ASSERT_EQ(kept.texts().size(), 1U);
  EXPECT_EQ(kept.texts()[0].title, "First");
  EXPECT_EQ(kept.texts()[0].artistName, "One");
  EXPECT_EQ(kept.texts()[0].albumName, "Two");
  EXPECT_EQ(kept.texts()[0].genreName, "Three");
}

TEST_F(TrackBatches, PutTitlesWhereTheyStay) {
  TrackBatch batch;
  read(batch, 3, false);
  const std::string_view titles = batch.titles();
  const std::string_view first = batch.texts()[0].title;
  while (!reader_.atEnd()) read(batch, 1000, false);
  EXPECT_EQ(titles, "FirstTitleTitle");
  EXPECT_EQ(first.data(), titles.data());
}

}  // namespace
}  // namespace Orvane::test
