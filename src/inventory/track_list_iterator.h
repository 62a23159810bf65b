#pragma once

#include <cstddef>
#include <iterator>

#include "inventory/track_index.h"

namespace Orvane {

// Goes through the track list of a TrackIndex; good until that changes.
class TrackListIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = const Track*;
  using difference_type = std::ptrdiff_t;
  using pointer = const value_type*;
  using reference = value_type;

  TrackListIterator(const TrackIndex& index, std::size_t place) : index_(&index), place_(place) {}

  const Track* operator*() const { return index_->listedAt(place_); }

  TrackListIterator& operator++() {
    ++place_;
    return *this;
  }
  TrackListIterator operator++(int) { return {*index_, place_++}; }

  friend difference_type operator-(const TrackListIterator& a, const TrackListIterator& b) {
    return static_cast<difference_type>(a.place_) - static_cast<difference_type>(b.place_);
  }
  friend bool operator==(const TrackListIterator& a, const TrackListIterator& b) {
    return a.place_ == b.place_;
  }

 private:
  const TrackIndex* index_;
  std::size_t place_;
};

}  // namespace Orvane
