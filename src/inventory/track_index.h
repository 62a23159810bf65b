#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "inventory/media_id_index.h"
#include "inventory/track_categories.h"
#include "inventory/track_ids.h"
#include "tree/track.h"
#include "tree/track_table.h"

namespace Orvane {

// How the tracks of a TrackManager can be found: in the order of their registration, by media id,
// and in the orders of the four categories. Only the first track of a media id is in here; the
// others are owned and nothing else.
class TrackIndex {
 public:
  // A track is told from the others by its number, counted from 1 in the order of entering and
  // never given again, not even after clear().
  using Number = std::uint32_t;

  // False, and nothing changes, when the media id is known already. Otherwise the track is in the
  // list, under its media id, and in each category in which its id, or rating, isn't 0. The track,
  // its album and all that this refers to must outlive the index.
  bool add(Track& track);

  // Says that about so many tracks will be added: see MediaIdIndex::expectCount.
  void expect(std::size_t count) { numbersById_.expectCount(tracksByNumber_.size() + count); }

  // Asks, in three steps from 0 on, each in time for the next, for what adding a track with these
  // ids looks at: that is all over the memory. Not for several threads: it remembers what it finds.
  void expect(const TrackIds& ids, int step) const {
    if (step == 0) numbersById_.expect(ids.media);
    categories_.expect(ids, step);
  }

  // Says that tracks with these media ids will be looked for next.
  void expectLookups(std::span<const std::uint32_t> mediaIds) const;

  // Withdraws a media id; unknown ones are ignored. See listSize() for what becomes of the list.
  void remove(std::uint32_t mediaId);

  // Takes all entries of a category's id out of that category, and the tracks that had them out of
  // the other two of artists, albums and genres.
  void removeCategory(CategoryIndex& category, std::uint32_t id);

  bool has(std::uint32_t mediaId) const { return find(mediaId) != nullptr; }

  // The first track with that media id, or nullptr.
  const Track* find(std::uint32_t mediaId) const;

  // The track's number, if it is this very track that has it here; otherwise 0.
  Number numberOf(const Track& track) const {
    const Number number = track.getNumber();
    return number < tracksByNumber_.size() && tracksByNumber_[number] == &track ? number : 0;
  }

  // The tracks by number, also those that have been withdrawn.
  const TrackTable& getTracksByNumber() const { return tracksByNumber_; }

  // Like find, but leaves an empty entry under an unknown id, as looking up in a map by subscript
  // does.
  const Track* findOrEnter(std::uint32_t mediaId);
  bool hasEntry(std::uint32_t mediaId) const { return numbersById_.hasEntry(mediaId); }

  // Forgets all media ids, which take much memory: no track is found by its id any more, all else
  // stays as it is. For when all has been read: until clear(), nothing may be added or removed.
  void forgetIds() { numbersById_.clear(); }

  // Forgets all entries and names of the categories.
  void forgetCategories() {
    categories_.clear();
    ratings_.clear();
  }

  void clear();

  // The track list, in registration order. A removal moves the later tracks up but doesn't shorten
  // the list: its last place keeps what was there. That is deliberate; what reads the list relies
  // on its length.
  std::size_t listSize() const {
    return hasOwnList_ ? ownList_.size() : tracksByNumber_.size() - firstOfList_;
  }
  const Track* listedAt(std::size_t place) const {
    return tracksByNumber_[hasOwnList_ ? ownList_[place] : firstOfList_ + place];
  }

  // To take entries out: none is to be entered but by add(). What the albums' has are Albums.
  CategoryIndex& getArtists() { return categories_.artists(); }
  CategoryIndex& getAlbums() { return categories_.albums(); }
  CategoryIndex& getGenres() { return categories_.genres(); }
  CategoryIndex& getRatings() { return ratings_; }
  const CategoryIndex& getArtists() const { return categories_.artists(); }
  const CategoryIndex& getAlbums() const { return categories_.albums(); }
  const CategoryIndex& getGenres() const { return categories_.genres(); }
  const CategoryIndex& getRatings() const { return ratings_; }

  // What the album's id was last entered with, nullptr if it never was.
  const Album* findAlbum(std::uint32_t id) const { return categories_.findAlbum(id); }

  // The tracks of a category's entries in its order, in a list of the caller's own.
  std::vector<const Track*> tracksInOrder(const CategoryIndex& category) const;

 private:
  TrackTable tracksByNumber_;
  // The track list is the end of the table until a track is removed.
  Number firstOfList_ = 1;
  bool hasOwnList_ = false;
  LargeVector<Number> ownList_;
  MediaIdIndex numbersById_;
  TrackCategories categories_;
  CategoryIndex ratings_;
};

}  // namespace Orvane
