#include "inventory/album_runs.h"

#include <algorithm>
#include <numeric>

namespace Orvane {

void AlbumRuns::add(std::uint32_t album, std::span<std::uint32_t> numbers) {
  if (runs_.empty()) numbers_ = numbers.data();
  runs_.push_back({album, static_cast<std::uint32_t>(numbers.size())});
  if (begins_.size() == album + std::size_t{1}) begins_.push_back(0);
  begins_[album + std::size_t{1}] += numbers.size();
}

void AlbumRuns::join() {
  std::partial_sum(begins_.begin(), begins_.end(), begins_.begin());
  places_ = begins_;
  // Mostly all runs are in place already. Those that aren't are in groups whose albums have no
  // others: that is where the numbers so far are all that the albums so far have.
  std::size_t end = 0;
  std::size_t last = 0;
  for (std::size_t next = 0; next < runs_.size();) {
    const std::size_t first = next;
    const std::size_t begin = end;
    do {
      last = std::max<std::size_t>(last, runs_[next].album);
      end += runs_[next++].size;
    } while (end != begins_[last + 1]);
    if (next - first > 1) joinGroup(std::span(runs_).subspan(first, next - first), begin, end);
  }
}

void AlbumRuns::joinGroup(std::span<const Run> runs, std::size_t begin, std::size_t end) {
  numbersBefore_.assign(numbers_ + begin, numbers_ + end);
  auto next = numbersBefore_.cbegin();
  for (const Run& run : runs) {
    std::copy(next, next + run.size, numbers_ + places_[run.album]);
    places_[run.album] += run.size;
    next += run.size;
  }
}

}  // namespace Orvane
