#pragma once

#include <cstdint>

#include "inventory/category_index.h"
#include "inventory/combined_entries.h"
#include "inventory/track_ids.h"
#include "tree/huge_pages.h"
#include "tree/track.h"

namespace Orvane {

// The three orders in which tracks have names, artists, genres and albums. All that a track has in
// them is found through its Album where that is what the last track of the album had, too, as long
// as no artist and no genre has changed its name and no entry has been taken out.
class TrackCategories {
 public:
  TrackCategories() { combine(); }

  // Enters the track with that number into each category in which its id isn't 0. Its album, and
  // all that this refers to, must outlive the categories, or the next clear().
  void add(const Track& track, std::uint32_t number);

  // Asks, in three steps from 0 on, each in time for the next, for what adding a track with these
  // ids looks at. Not for several threads: it remembers what it finds.
  void expect(const TrackIds& ids, int step) const;

  void clear();

  // To take entries out. What the albums' has are Albums.
  CategoryIndex& artists() { return artists_; }
  CategoryIndex& genres() { return genres_; }
  CategoryIndex& albums() { return albums_; }
  const CategoryIndex& artists() const { return artists_; }
  const CategoryIndex& genres() const { return genres_; }
  const CategoryIndex& albums() const { return albums_; }

  // What the album's id was last entered with, nullptr if it never was.
  const Album* findAlbum(std::uint32_t id) const {
    return static_cast<const Album*>(albums_.find(id));
  }

 private:
  void combine();
  bool isAlbumEnough() const;
  std::uint32_t combinationOf(const Album& album) const;
  void addEntries(const CombinedEntries::Positions& positions, std::uint32_t number);
  std::uint32_t& placeOfCombination(std::uint32_t album);

  CategoryIndex artists_;
  CategoryIndex genres_;
  CategoryIndex albums_;
  CombinedEntries entries_;
  // What the last track with an album had, by the position of its id, or kNone; and what the last
  // one without any had.
  LargeVector<std::uint32_t> combinationOfAlbum_;
  std::uint32_t combinationOfNoAlbum_ = CombinedEntries::kNone;
};

}  // namespace Orvane
