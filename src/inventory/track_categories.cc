#include "inventory/track_categories.h"

#include <cstddef>

#include "tree/prefetch.h"

namespace Orvane {

void TrackCategories::combine() {
  artists_.takeFrom(entries_, CombinedEntries::kArtists);
  genres_.takeFrom(entries_, CombinedEntries::kGenres);
  albums_.takeFrom(entries_, CombinedEntries::kAlbums);
}

// Whether a track with the Album of the one before it on that album has the same entries, and
// leaves all ids the names that they have.
bool TrackCategories::isAlbumEnough() const {
  return artists_.isCombined() && genres_.isCombined() && albums_.isCombined() &&
         !artists_.anyHasSeveral() && !genres_.anyHasSeveral();
}

// That of the tracks with this Album, if the last one on its album is among them.
std::uint32_t TrackCategories::combinationOf(const Album& album) const {
  const CategoryIndex::Last last = albums_.findLast(album.id());
  const bool isKnown = last.named == &album && last.position < combinationOfAlbum_.size();
  return isKnown ? combinationOfAlbum_[last.position] : CombinedEntries::kNone;
}

void TrackCategories::add(const Track& track, std::uint32_t number) {
  const Album& album = track.getAlbum();
  if (isAlbumEnough()) {
    const std::uint32_t combination = combinationOf(album);
    if (combination != CombinedEntries::kNone) {
      entries_.add(combination, number);
      return;
    }
  }
  const auto enter = [number](CategoryIndex& category, const NamedId& entry) {
    return entry.id() == 0 ? CombinedEntries::kNone : category.insert(entry, number);
  };
  CombinedEntries::Positions positions{};
  positions[CombinedEntries::kArtists] = enter(artists_, album.artist());
  positions[CombinedEntries::kGenres] = enter(genres_, album.genre());
  positions[CombinedEntries::kAlbums] = enter(albums_, album);
  constexpr CombinedEntries::Positions kNowhere = {CombinedEntries::kNone, CombinedEntries::kNone,
                                                   CombinedEntries::kNone};
  const bool isAnyCombined = artists_.isCombined() || genres_.isCombined() || albums_.isCombined();
  if (isAnyCombined && positions != kNowhere) addEntries(positions, number);
}

void TrackCategories::addEntries(const CombinedEntries::Positions& positions,
                                 std::uint32_t number) {
  const std::uint32_t album = positions[CombinedEntries::kAlbums];
  std::uint32_t& combination =
      album == CombinedEntries::kNone ? combinationOfNoAlbum_ : placeOfCombination(album);
  // It may be another Album's, or from before a category was cleared.
  if (entries_.isCombination(combination, positions)) {
    entries_.add(combination, number);
  } else {
    // Where there is no memory for the new one, the old one is not the Album's.
    combination = CombinedEntries::kNone;
    combination = entries_.addNew(positions, number);
  }
}

std::uint32_t& TrackCategories::placeOfCombination(std::uint32_t album) {
  while (album >= combinationOfAlbum_.size()) combinationOfAlbum_.push_back(CombinedEntries::kNone);
  return combinationOfAlbum_[album];
}

void TrackCategories::expect(const TrackIds& ids, int step) const {
  if (step < 2) albums_.expect(ids.album, step);
  if (step == 0) return;
  const CategoryIndex::Last last = albums_.findLast(ids.album);
  if (step == 2 && last.position < combinationOfAlbum_.size()) {
    prefetch(&combinationOfAlbum_[last.position]);
  }
  if (last.named == nullptr || albums_.hasSeveral(last.position) || !isAlbumEnough()) {
    artists_.expect(ids.artist, step - 1);
    genres_.expect(ids.genre, step - 1);
  } else if (step == 2) {
    // Its genre is that of many albums, and so at hand.
    CategoryIndex::expect(static_cast<const Album*>(last.named)->artist());
  }
}

void TrackCategories::clear() {
  for (CategoryIndex* category : {&artists_, &genres_, &albums_}) category->clear();
  entries_.clear();
  release(combinationOfAlbum_);
  combinationOfNoAlbum_ = CombinedEntries::kNone;
  combine();
}

}  // namespace Orvane
