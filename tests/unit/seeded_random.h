#pragma once

#include <cstdint>
#include <random>

namespace Orvane::test {

// Random numbers that are the same in every run, so that a failure can be seen again.
inline std::mt19937 seededRandom(std::uint32_t seed) {
  return std::mt19937(seed);
}

}  // namespace Orvane::test
