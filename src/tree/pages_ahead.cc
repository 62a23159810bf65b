#include "tree/pages_ahead.h"

#include <sys/mman.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <thread>

#include "tree/huge_pages.h"
#include "tree/parallel.h"

#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23  // kernels that don't know it refuse it
#endif

namespace Orvane {

namespace {

// A thread that makes pages until the process ends, and what it is to make them of.
class PageMaker {
 public:
  struct Piece {
    std::byte* memory;
    std::size_t size;
  };

  void add(Piece piece) {
    {
      const std::lock_guard lock(mutex_);
      if (!haveThread() || added_ - taken_ == pieces_.size()) return;
      pieces_[added_++ % pieces_.size()] = piece;
    }
    changed_.notify_one();
  }

  // What is to be done when there is nothing else, in place of what was. False where nobody will.
  bool setForLater(Piece piece) {
    {
      const std::lock_guard lock(mutex_);
      if (!haveThread()) return false;
      forLater_ = piece;
    }
    changed_.notify_one();
    return true;
  }

 private:
  // False where there is none to be had: then pages are made when they are touched.
  bool haveThread() {
    hasThread_ = hasThread_ || startThread();
    return hasThread_;
  }

  bool startThread() {
    if (usableProcessors() < 2) return false;
    try {
      std::thread([this] { work(); }).detach();
    } catch (const std::exception&) {
      return false;
    }
    return true;
  }

  // Whoever has something to work out must not wait for this. (On Linux a thread has a priority of
  // its own.)
  static void giveWay() {
    constexpr int kLowest = 19;
    static_cast<void>(::setpriority(PRIO_PROCESS, 0, kLowest));
  }

  void work() {
    giveWay();
    while (true) makePages(take());
  }

  Piece take() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return added_ != taken_ || forLater_.size > 0; });
    if (added_ != taken_) return pieces_[taken_++ % pieces_.size()];
    // A large page at a time: something may come that is needed sooner.
    const Piece part = {forLater_.memory, std::min(forLater_.size, kHugePageSize)};
    forLater_.memory += part.size;
    forLater_.size -= part.size;
    return part;
  }

  static void makePages(Piece piece) {
    for (std::size_t at = 0; at < piece.size; at += kHugePageSize) {
      const std::size_t size = std::min(piece.size - at, kHugePageSize);
      if (::madvise(piece.memory + at, size, MADV_POPULATE_WRITE) != 0) return;
    }
  }

  bool hasThread_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::array<Piece, 64> pieces_;  // what comes when it is full isn't worth waiting for
  std::size_t added_ = 0;
  std::size_t taken_ = 0;
  Piece forLater_ = {nullptr, 0};
};

PageMaker& pageMaker() {
  // Never destroyed: nobody joins the thread.
  alignas(PageMaker) static std::array<std::byte, sizeof(PageMaker)> place;
  static PageMaker& maker = *new (place.data()) PageMaker();
  return maker;
}

}  // namespace

void makePagesAhead(void* memory, std::size_t size) {
  if (size < kHugePageSize) return;
  pageMaker().add({static_cast<std::byte*>(memory), size});
}

PagesForLater::PagesForLater(std::size_t size) : size_(size) {
  if (size < kHugePageSize) return;
  try {
    memory_ = allocateLarge(size);
  } catch (const std::bad_alloc&) {
    return;  // who needs it later may need less
  }
  if (pageMaker().setForLater({static_cast<std::byte*>(memory_), size})) return;
  freeLarge(memory_, size);
  memory_ = nullptr;
}

PagesForLater::~PagesForLater() {
  if (memory_ == nullptr) return;
  static_cast<void>(pageMaker().setForLater({nullptr, 0}));
  freeLarge(memory_, size_);
}

}  // namespace Orvane
