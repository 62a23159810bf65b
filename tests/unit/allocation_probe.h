// The test program's own operator new: it counts what is live and can be told to run out.
#pragma once

#include <cstddef>

namespace Orvane::test {

// Objects that came from operator new and have not been deleted yet.
std::ptrdiff_t liveAllocations();

// While it lives, operator new succeeds `allowed` times and then throws std::bad_alloc each time.
class LimitedAllocations {
 public:
  explicit LimitedAllocations(std::ptrdiff_t allowed);
  LimitedAllocations(const LimitedAllocations&) = delete;
  LimitedAllocations& operator=(const LimitedAllocations&) = delete;
  ~LimitedAllocations();
};

}  // namespace Orvane::test
