#pragma once

#include <cstddef>
#include <functional>

namespace Orvane {

// How many processors this process may use, at least one: with taskset or in a container that can
// be fewer than the machine has.
std::size_t usableProcessors() noexcept;

// How many workers are worth having for what takes `steps` short steps in all: one for each usable
// processor, but no more than eight; just one when starting threads would take longer than they
// save.
std::size_t workersFor(std::size_t steps);

// Calls `work(i, worker)` once for each i below `count`, in any order, `workers` at a time;
// `worker`, below `workers`, tells calls that may run at the same time apart. Where there is no
// thread to be had the others do its part. When a call throws, that is thrown here once all calls
// under way have ended; others may then not have been made.
void forEachInParallel(std::size_t count, std::size_t workers,
                       const std::function<void(std::size_t i, std::size_t worker)>& work);

}  // namespace Orvane
