#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <exception>
#include <semaphore>
#include <thread>

namespace Orvane {

// Enough items for the making to go on while the use of one waits for the system, and few enough to
// stay in the caches, if they are small.
inline constexpr std::size_t kManyAhead = 16;

// Calls `make(item)` again and again, as long as it returns true, and `use(item)` with each item so
// made, in order. Where the system has a thread to spare, items are made in one of their own, while
// those before are used; `make` and `use` must then not look at what the other changes. At most
// kMost items are there at a time.
//
// What `make` throws is thrown when the items before have been used, what `use` throws at once. In
// either case no call is under way any more, which takes as long as the last one does.
template <typename Item, std::size_t kMost = kManyAhead, typename Make, typename Use>
void forEachMadeAhead(Make make, Use use) {
  struct Place {
    Item item;
    bool isLast = false;  // there is no item in here, nor after it
  };
  std::array<Place, kMost> places;
  constexpr auto kPlaces = static_cast<std::ptrdiff_t>(kMost);
  using Semaphore = std::counting_semaphore<kPlaces>;
  Semaphore made(0);
  Semaphore free(kPlaces);
  std::atomic<bool> isGivenUp = false;
  std::exception_ptr failure;

  const auto makeAll = [&] {
    for (std::size_t i = 0;; i = (i + 1) % kMost) {
      free.acquire();
      if (isGivenUp) return;
      try {
        places[i].isLast = !make(places[i].item);
      } catch (...) {
        failure = std::current_exception();
        places[i].isLast = true;
      }
      const bool isLast = places[i].isLast;  // the place may be gone once it is handed over
      made.release();
      if (isLast) return;
    }
  };

  std::thread maker;
  try {
    maker = std::thread(makeAll);
  } catch (const std::exception&) {  // for lack of threads or of memory
    while (make(places[0].item)) use(places[0].item);
    return;
  }
  struct Joiner {
    std::thread& maker;
    std::atomic<bool>& isGivenUp;
    Semaphore& free;
    ~Joiner() {
      isGivenUp = true;
      free.release();
      maker.join();
    }
  };
  {
    const Joiner joiner{maker, isGivenUp, free};
    for (std::size_t i = 0;; i = (i + 1) % kMost) {
      made.acquire();
      if (places[i].isLast) break;
      use(places[i].item);
      free.release();
    }
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace Orvane
