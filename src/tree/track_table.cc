#include "tree/track_table.h"

namespace Orvane {

void TrackTable::push_back(const Track* track) {
  const std::size_t place = size_ % kChunkSize;
  if (place == 0) {
    // There is a chunk already where a number was taken back.
    chunks_.resize(size_ / kChunkSize);
    chunks_.push_back({track, nullptr});
  }
  Chunk& chunk = chunks_.back();
  const bool follows = place == 0 || (chunk.first != nullptr && track == chunk.first + place);
  if (chunk.tracks == nullptr && !follows) listTracks(chunk, place);
  if (chunk.tracks != nullptr) chunk.tracks[place] = track;
  ++size_;
}

// Lists the first tracks of a chunk, as not all of them follow the first one.
void TrackTable::listTracks(Chunk& chunk, std::size_t count) {
  void* const memory = memory_.allocate(kChunkSize * sizeof(const Track*), alignof(const Track*));
  auto** const tracks = static_cast<const Track**>(memory);
  for (std::size_t i = 0; i < count; ++i) tracks[i] = chunk.first + i;
  chunk.tracks = tracks;
}

}  // namespace Orvane
