#pragma once

#include <cstdint>
#include <span>

#include "tree/huge_pages.h"

namespace Orvane {

// The tracks' numbers of albums, which come in runs. Where an album has several, they are put
// together before they become leaves: to append them to its menu one by one would take several
// looks all over the memory for each.
class AlbumRuns {
 public:
  // Adds a run to an album's. Albums are numbered from 0 on in the order of their first runs, and
  // no run is empty. `numbers`, fewer than 2^32 in all, stand right behind those of the run before,
  // and must outlive this.
  void add(std::uint32_t album, std::span<std::uint32_t> numbers);

  // Puts the runs of each album together, by putting the numbers in another order where they are.
  // To be called once, when all have been added.
  void join();

  // Once they have been joined, the numbers of an album, in the order in which they were added.
  std::span<std::uint32_t> of(std::uint32_t album) const {
    return {numbers_ + begins_[album], begins_[album + 1] - begins_[album]};
  }

 private:
  struct Run {
    std::uint32_t album;
    std::uint32_t size;
  };

  void joinGroup(std::span<const Run> runs, std::uint32_t lastAlbum);

  std::uint32_t* numbers_ = nullptr;  // of all runs
  LargeVector<Run> runs_;
  // Of each album's among all, and their end.
  LargeVector<std::uint32_t> begins_ = LargeVector<std::uint32_t>(1);
  // Of a group that is joined: its numbers, and of each album where the next one goes. Freed when
  // all are joined.
  LargeVector<std::uint32_t> numbersBefore_;
  LargeVector<std::uint32_t> places_;
};

}  // namespace Orvane
