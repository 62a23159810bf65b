#pragma once

#include <cstdint>

namespace bench {

// Pseudo-random numbers that are the same on every machine and with every standard library, so that
// everybody measures the same inputs. Starting one costs nothing: each item of an input has its
// own, by which it can be made again without having been kept.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
  }

  // From 0 to bound - 1; even enough for small bounds.
  std::uint32_t below(std::uint32_t bound) {
    return static_cast<std::uint32_t>(((next() >> 32) * bound) >> 32);
  }

 private:
  std::uint64_t state_;
};

}  // namespace bench
