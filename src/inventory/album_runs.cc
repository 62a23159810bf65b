#include "inventory/album_runs.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace Orvane {

void AlbumRuns::add(std::uint32_t album, std::span<std::uint32_t> numbers) {
  const auto size = static_cast<std::uint32_t>(numbers.size());
  if (runs_.empty()) numbers_ = numbers.data();
  runs_.push_back({album, size});
  if (begins_.size() == album + std::size_t{1}) begins_.push_back(0);
  begins_[album + 1] += size;
}

void AlbumRuns::join() {
  std::partial_sum(begins_.begin(), begins_.end(), begins_.begin());
  // Mostly all runs are in place already. Those that aren't are in groups whose albums have no
  // others: that is where the numbers so far are all that the albums so far have.
  std::uint32_t end = 0;
  std::uint32_t last = 0;
  for (std::size_t next = 0; next < runs_.size();) {
    const std::size_t first = next;
    do {
      last = std::max(last, runs_[next].album);
      end += runs_[next++].size;
    } while (end != begins_[last + 1]);
    if (next - first > 1) joinGroup(std::span(runs_).subspan(first, next - first), last);
  }
  release(runs_);
  release(numbersBefore_);
  release(places_);
}

// A group begins with an album of its own, as each album that comes before is in a group before.
void AlbumRuns::joinGroup(std::span<const Run> runs, std::uint32_t lastAlbum) {
  const std::uint32_t firstAlbum = runs.front().album;
  const auto end = begins_.begin() + lastAlbum + 1;
  places_.assign(begins_.begin() + firstAlbum, end);
  numbersBefore_.assign(numbers_ + begins_[firstAlbum], numbers_ + *end);
  auto next = numbersBefore_.cbegin();
  for (const Run& run : runs) {
    std::uint32_t& place = places_[run.album - firstAlbum];
    std::copy(next, next + run.size, numbers_ + place);
    place += run.size;
    next += run.size;
  }
}

}  // namespace Orvane
