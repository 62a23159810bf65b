#pragma once

#include <cstddef>
#include <cstdint>

#include "tree/chunked_list.h"
#include "tree/huge_pages.h"

namespace Orvane {

// The entries of a CategoryIndex as they came: pairs of the position of a name and the number of a
// track. The tracks mostly count up, so that little more than the names has to be kept.
class CategoryEntries {
 public:
  // When memory runs out it throws, and nothing is added.
  void add(std::uint32_t name, std::uint32_t track) {
    if (runs_.empty() || track != nextTrack_) {
      addRun(name, track);
    } else {
      names_.push_back(name);
    }
    nextTrack_ = track + 1;
  }

  std::size_t size() const { return names_.size(); }

  // Calls use(name, track) for each, in order.
  template <typename Use>
  void forEach(Use use) const {
    auto run = runs_.begin();
    std::size_t at = 0;
    std::uint32_t track = 0;
    names_.forEach([&](std::uint32_t name) {
      if (run != runs_.end() && run->begin == at) track = (run++)->track;
      ++at;
      use(name, track++);
    });
  }

  void clear() {
    names_.clear();
    release(runs_);
  }

 private:
  // Entries of tracks that count up.
  struct Run {
    std::size_t begin;
    std::uint32_t track;  // of the first
  };

  void addRun(std::uint32_t name, std::uint32_t track) {
    runs_.push_back({names_.size(), track});
    try {
      names_.push_back(name);
    } catch (...) {
      runs_.pop_back();
      throw;
    }
  }

  ChunkedList<std::uint32_t> names_;
  LargeVector<Run> runs_;
  std::uint32_t nextTrack_ = 0;
};

}  // namespace Orvane
