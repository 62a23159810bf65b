#pragma once

#include <cstddef>

#include "tree/huge_pages.h"

namespace Orvane {

// Has the pages of memory that will be touched soon made in the background, where there is a
// processor to spare: to wait for each of them takes up to half of the time. Does no harm to memory
// that is freed, or given to somebody else, before it is done. For several threads.
//
// `memory` is at a multiple of a page's size; of less than a large page none are made.
void makePagesAhead(void* memory, std::size_t size);

// Memory for whoever asks for large pieces after this is destroyed, with or without its pages:
// while it lives they are made in the background, whenever none are to be made that are needed
// sooner. Where there is no processor to spare, or no memory, or less than a large page is asked
// for, it does nothing. To destroy it never waits. The newest of several takes the place of the
// others, and with any of them that ends.
class PagesForLater {
 public:
  explicit PagesForLater(std::size_t size);
  PagesForLater(const PagesForLater&) = delete;
  PagesForLater& operator=(const PagesForLater&) = delete;
  ~PagesForLater();

 private:
  void* memory_ = nullptr;
  std::size_t size_;
};

// A vector of so many elements, as T() makes them. Half of its pages, if they are many, are made
// while the other half is filled.
template <typename T>
LargeVector<T> makeLargeVector(std::size_t size) {
  LargeVector<T> vector;
  vector.reserve(size);
  const std::size_t bytes = size * sizeof(T);
  const std::size_t half = bytes / 2 / kHugePageSize * kHugePageSize;
  if (half > 0) {
    makePagesAhead(reinterpret_cast<std::byte*>(vector.data()) + half, bytes - half);
  }
  vector.resize(size);
  return vector;
}

}  // namespace Orvane
