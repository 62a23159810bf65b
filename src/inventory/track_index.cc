#include "inventory/track_index.h"

#include <algorithm>
#include <numeric>

namespace Orvane {

bool TrackIndex::add(Track& track) {
  const auto number = static_cast<Number>(tracksByNumber_.size());
  tracksByNumber_.push_back(&track);
  if (numbersById_.enter(track.getMediaId(), number) != number) {
    tracksByNumber_.pop_back();
    return false;
  }
  track.setNumber(number <= Track::kNumber ? number : 0);
  if (hasOwnList_) ownList_.push_back(number);

  categories_.add(track, number);
  if (track.getRating() != 0) ratings_.insert(track.getRating(), number);
  return true;
}

void TrackIndex::expectLookups(std::span<const std::uint32_t> mediaIds) const {
  for (const std::uint32_t id : mediaIds) numbersById_.expect(id);
}

void TrackIndex::remove(std::uint32_t mediaId) {
  const Number found = numbersById_.find(mediaId);
  numbersById_.erase(mediaId);  // first, as it may need memory
  if (found != 0) {
    for (CategoryIndex* category : {&getGenres(), &getArtists(), &getAlbums(), &ratings_}) {
      category->eraseTracks({&found, 1});
    }
  }
  if (!hasOwnList_) {
    ownList_.resize(listSize());
    std::iota(ownList_.begin(), ownList_.end(), firstOfList_);
    hasOwnList_ = true;
  }
  static_cast<void>(std::remove_if(ownList_.begin(), ownList_.end(), [=, this](Number number) {
    return tracksByNumber_[number]->getMediaId() == mediaId;
  }));
}

void TrackIndex::removeCategory(CategoryIndex& category, std::uint32_t id) {
  const std::vector<Number> numbers = category.tracksOf(id);
  for (CategoryIndex* other : {&getGenres(), &getArtists(), &getAlbums()}) {
    if (other != &category) other->eraseTracks(numbers);
  }
  category.eraseId(id);
}

const Track* TrackIndex::find(std::uint32_t mediaId) const {
  return tracksByNumber_[numbersById_.find(mediaId)];
}

const Track* TrackIndex::findOrEnter(std::uint32_t mediaId) {
  numbersById_.enterEmpty(mediaId);
  return find(mediaId);
}

void TrackIndex::clear() {
  // Numbers are never given twice: a track that was in here may still be in somebody's playlist.
  release(ownList_);
  hasOwnList_ = false;
  firstOfList_ = static_cast<Number>(tracksByNumber_.size());
  numbersById_.clear();
  forgetCategories();
}

std::vector<const Track*> TrackIndex::tracksInOrder(const CategoryIndex& category) const {
  const LargeVector<Number> numbers = category.tracksInOrder();
  std::vector<const Track*> tracks(numbers.size());
  std::transform(numbers.begin(), numbers.end(), tracks.begin(),
                 [this](Number number) { return tracksByNumber_[number]; });
  return tracks;
}

}  // namespace Orvane
