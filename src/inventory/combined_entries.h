#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>

#include "inventory/category_entries.h"
#include "tree/chunked_list.h"
#include "tree/huge_pages.h"

namespace Orvane {

// The entries that tracks have in artists, genres and albums, in one list: each track that has any
// has one combination of them, which most tracks of an album share.
class CombinedEntries {
 public:
  enum Category { kArtists, kGenres, kAlbums };

  // By category: the position of a track's id there.
  using Positions = std::array<std::uint32_t, 3>;
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;  // no entry; no combination

  // Adds a track. When memory runs out it throws, and nothing is added.
  void add(std::uint32_t combination, std::uint32_t track) { tracks_.add(combination, track); }

  // The same with a new combination, whose number is returned: they count up. When memory runs out,
  // it may be there, but without tracks.
  std::uint32_t addNew(const Positions& positions, std::uint32_t track) {
    const auto combination = static_cast<std::uint32_t>(combinations_.size());
    combinations_.push_back(positions);
    tracks_.add(combination, track);
    return combination;
  }

  bool isCombination(std::uint32_t number, const Positions& positions) const {
    return number < combinations_.size() && combinations_[number] == positions;
  }

  // The tracks as they came, with their combinations; and these, by number.
  const CategoryEntries& tracks() const { return tracks_; }
  const ChunkedList<Positions>& combinations() const { return combinations_; }

  // By combination, how many tracks have it. For several threads, and good until the next change.
  std::span<const std::uint32_t> trackCounts() const {
    const std::lock_guard lock(counting_);
    if (counted_ != tracks_.size() || trackCounts_.size() != combinations_.size()) {
      trackCounts_.assign(combinations_.size(), 0);
      tracks_.forEach([this](std::uint32_t combination, std::uint32_t /*track*/) {
        ++trackCounts_[combination];
      });
      counted_ = tracks_.size();
    }
    return trackCounts_;
  }

  void clear() {
    tracks_.clear();
    release(trackCounts_);
    counted_ = 0;
    combinations_.clear();
  }

 private:
  CategoryEntries tracks_;
  ChunkedList<Positions> combinations_;

  mutable std::mutex counting_;
  mutable LargeVector<std::uint32_t> trackCounts_;
  mutable std::size_t counted_ = 0;  // of tracks_
};

}  // namespace Orvane
