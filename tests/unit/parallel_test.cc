#include "tree/parallel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "allocation_probe.h"

namespace Orvane::test {
namespace {

TEST(Parallel, DoesEachPartOnce) {
  for (const std::size_t workers : {1U, 2U, 5U}) {
    for (const std::size_t count : {0U, 1U, 2U, 1000U}) {
      std::vector<std::atomic<int>> done(count);
      forEachInParallel(count, workers, [&](std::size_t i, std::size_t worker) {
        EXPECT_LT(worker, workers);
        ++done[i];
      });
      EXPECT_TRUE(std::all_of(done.begin(), done.end(), [](int times) { return times == 1; }))
          << workers << ' ' << count;
    }
  }
}

// Each part waits for the other one to be under way.
TEST(Parallel, DoesPartsSideBySideAsDifferentWorkers) {
  for (const std::size_t workers : {2U, 3U}) {
    std::mutex mutex;
    std::condition_variable changed;
    std::set<std::size_t> underWay;
    forEachInParallel(workers, workers, [&](std::size_t, std::size_t worker) {
      std::unique_lock lock(mutex);
      underWay.insert(worker);
      changed.notify_all();
      changed.wait(lock, [&] { return underWay.size() == workers; });
    });
    EXPECT_EQ(underWay.size(), workers);
  }
}

TEST(Parallel, HasNoMoreWorkersThanWanted) {
  std::atomic<std::size_t> last = 0;
  forEachInParallel(100, 2, [&](std::size_t, std::size_t worker) {
    if (worker > last) last = worker;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  });
  EXPECT_LT(last, 2U);
}

TEST(Parallel, OneWorkerGoesInOrder) {
  std::vector<std::size_t> order;
  forEachInParallel(3, 1, [&](std::size_t i, std::size_t) { order.push_back(i); });
  EXPECT_EQ(order, (std::vector<std::size_t>{0, 1, 2}));
}

TEST(Parallel, ThrowsWhatAPartThrows) {
  for (const std::size_t workers : {1U, 3U}) {
    std::atomic<int> begun = 0;
    const auto work = [&](std::size_t i, std::size_t) {
      ++begun;
      if (i == 5) throw std::runtime_error("on purpose");
    };
    EXPECT_THROW(forEachInParallel(100'000, workers, work), std::runtime_error);
    EXPECT_LT(begun, 100'000) << "the rest need not be done";
  }
}

TEST(Parallel, FewerWorkersDoItAllWhenMemoryRunsOut) {
  for (std::ptrdiff_t allowed = 0; allowed < 12; ++allowed) {
    std::atomic<int> done = 0;
    const std::function<void(std::size_t, std::size_t)> work = [&](std::size_t, std::size_t) {
      ++done;
    };
    bool isRefused = false;
    try {
      const LimitedAllocations limited(allowed);
      forEachInParallel(50, 4, work);
    } catch (const std::bad_alloc&) {
      isRefused = true;
    }
    EXPECT_EQ(done, isRefused ? 0 : 50) << allowed;
    EXPECT_EQ(isRefused, allowed == 0) << allowed;
  }
}

TEST(Parallel, LittleIsForOneWorker) {
  EXPECT_EQ(workersFor(0), 1U);
  EXPECT_EQ(workersFor(10'000), 1U);
  EXPECT_EQ(workersFor(100'000'000), std::min<std::size_t>(usableProcessors(), 8));
}

}  // namespace
}  // namespace Orvane::test
