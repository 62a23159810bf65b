#pragma once

#include <cstddef>
#include <vector>

#include "tree/arena.h"
#include "tree/track.h"

namespace Orvane {

// Tracks by their numbers, which count up from 1; there is none with number 0. The tracks belong to
// somebody else.
//
// Tracks mostly stand in memory in the order of their numbers: of so many it is enough to know
// where the first one is, so that to find one takes no look at a place of its own.
class TrackTable {
 public:
  TrackTable() { push_back(nullptr); }

  // One more than the highest number.
  std::size_t size() const { return size_; }

  // `number` is below size().
  const Track* operator[](std::size_t number) const {
    const Chunk& chunk = chunks_[number / kChunkSize];
    const std::size_t place = number % kChunkSize;
    return chunk.tracks != nullptr ? chunk.tracks[place] : chunk.first + place;
  }

  // Gives the track the next number.
  void push_back(const Track* track);

  // Takes back the number given last.
  void pop_back() { --size_; }

 private:
  static constexpr std::size_t kChunkSize = 4096;

  struct Chunk {
    const Track* first;    // the others follow, where `tracks` is nullptr
    const Track** tracks;  // of all of them
  };

  void listTracks(Chunk& chunk, std::size_t count);

  std::vector<Chunk> chunks_;
  std::size_t size_ = 0;
  Arena memory_;  // of lists of tracks
};

}  // namespace Orvane
