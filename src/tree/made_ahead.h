#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>

namespace Orvane {

// Enough items for the making to go on while the use of one waits for the system, and few enough to
// stay in the caches, if they are small.
inline constexpr std::size_t kManyAhead = 16;

// The items of one call of forEachMadeAhead, and what the two threads tell each other.
template <typename Item, std::size_t kMost = kManyAhead>
class MadeAhead {
 public:
  template <typename Take, typename Make, typename Use>
  void forEach(Take take, Make make, Use use) {
    std::thread helper;
    try {
      helper = std::thread([&] { help(take, make); });
    } catch (const std::exception&) {  // for lack of threads or of memory
      Item& item = places_[0].item;
      while (take(item)) {
        make(item);
        use(item);
      }
      return;
    }
    const Joiner joiner{*this, helper};
    for (std::size_t i = 0;; i = (i + 1) % kMost) {
      Place& place = places_[i];
      while (place.state != kMade) {
        if (!makeNext(take, make, std::try_to_lock)) place.state.wait(kTaken);
      }
      if (place.failure) std::rethrow_exception(place.failure);
      if (place.isLast) return;
      use(place.item);
      place.state = kFree;
      // To wake the helper takes time, so it is done when there are several places for it. Should
      // the caller run out of items meanwhile, it makes them itself.
      if (++used_ % (kMost / 2) == 0) used_.notify_one();
    }
  }

 private:
  enum State { kFree, kTaken, kMade };

  struct Place {
    Item item;
    std::atomic<State> state = kFree;
    bool isLast = false;  // there is no item in here, nor after it
    std::exception_ptr failure;
  };

  struct Joiner {
    MadeAhead& items;
    std::thread& helper;
    ~Joiner() {
      items.isOver_ = true;
      ++items.used_;
      items.used_.notify_one();
      helper.join();
    }
  };

  // The helper's work: makes items as long as there are places for them, and when it finds none,
  // sleeps until it is woken.
  template <typename Take, typename Make>
  void help(Take& take, Make& make) {
    while (!isOver_) {
      const unsigned used = used_;
      if (!makeNext(take, make) && !isOver_) used_.wait(used);
    }
  }

  // Takes and makes the next item. False when there is no place for it, or none left, or, with
  // std::try_to_lock, while the other thread takes one.
  template <typename Take, typename Make, typename... TryToLock>
  bool makeNext(Take& take, Make& make, TryToLock... tryToLock) {
    Place* const place = takeNext(take, tryToLock...);
    if (place == nullptr) return false;
    if (!place->isLast) {
      try {
        make(place->item);
      } catch (...) {
        place->failure = std::current_exception();
        isOver_ = true;
      }
    }
    place->state = kMade;
    place->state.notify_one();
    return true;
  }

  template <typename Take, typename... TryToLock>
  Place* takeNext(Take& take, TryToLock... tryToLock) {
    const std::unique_lock lock(taking_, tryToLock...);
    if (!lock.owns_lock()) return nullptr;
    Place& place = places_[next_];
    if (isOver_ || place.state != kFree) return nullptr;
    place.state = kTaken;
    next_ = (next_ + 1) % kMost;
    try {
      place.isLast = !take(place.item);
    } catch (...) {
      place.failure = std::current_exception();
      place.isLast = true;
    }
    if (place.isLast) isOver_ = true;
    return &place;
  }

  static_assert(kMost >= 2);

  std::array<Place, kMost> places_;
  std::mutex taking_;
  std::size_t next_ = 0;  // the place of the next item to be taken
  std::atomic<bool> isOver_ = false;
  std::atomic<unsigned> used_ = 0;
};

// Calls `take(item)` again and again, as long as it returns true, then `make(item)`, and
// `use(item)` with each item so made, in order. Where the system has a thread to spare, that one
// makes items while those before are used; the caller's own makes some, too, rather than wait for
// it.
//
// Items are taken in order, one at a time, but by either thread, and `use` is always called by the
// caller's; `take` and `make` must not look at what `use` changes, nor `make` at what another
// `make` or `take` does, unless that is for several threads. At most kMost items are there at a
// time.
//
// What `take` or `make` throws is thrown when the items before have been used, what `use` throws at
// once. In either case no call is under way any more, which takes as long as the last one does.
template <typename Item, std::size_t kMost = kManyAhead, typename Take, typename Make, typename Use>
void forEachMadeAhead(Take take, Make make, Use use) {
  MadeAhead<Item, kMost>().forEach(take, make, use);
}

}  // namespace Orvane
