#include "tree/parallel.h"

#include <sched.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvane {

std::size_t usableProcessors() noexcept {
  cpu_set_t usable;
  if (::sched_getaffinity(0, sizeof(usable), &usable) == 0) {
    return static_cast<std::size_t>(CPU_COUNT(&usable));
  }
  return std::max(std::thread::hardware_concurrency(), 1U);  // more of them than the set can tell
}

std::size_t workersFor(std::size_t steps) {
  constexpr std::size_t kStepsWorthAThread = 200'000;
  constexpr std::size_t kMostWorkers = 8;
  if (steps < kStepsWorthAThread) return 1;
  return std::min(usableProcessors(), kMostWorkers);
}

void forEachInParallel(std::size_t count, std::size_t workers,
                       const std::function<void(std::size_t i, std::size_t worker)>& work) {
  std::atomic<std::size_t> next = 0;
  std::exception_ptr failure;
  std::mutex failureMutex;
  const auto takePart = [&](std::size_t worker) {
    try {
      for (std::size_t i = next++; i < count; i = next++) work(i, worker);
    } catch (...) {
      const std::lock_guard lock(failureMutex);
      if (!failure) failure = std::current_exception();
      next = count;
    }
  };

  workers = std::min(workers, count);
  std::vector<std::thread> threads;
  threads.reserve(workers);
  try {
    for (std::size_t worker = 1; worker < workers; ++worker) threads.emplace_back(takePart, worker);
  } catch (const std::exception&) {
    // For lack of threads or of memory: then there are fewer.
  }
  takePart(0);
  for (std::thread& thread : threads) thread.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace Orvane
