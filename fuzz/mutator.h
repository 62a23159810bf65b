// What the mutators of text formats share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t limit);

namespace Orvane::fuzz {

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}

  // At least 0 and less than `limit`, which is at least 1.
  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool oneIn(std::size_t times) { return below(times) == 0; }

  template <typename Sequence>
  auto& oneOf(Sequence& sequence) {
    return sequence[below(std::size(sequence))];
  }

 private:
  std::minstd_rand random_;
};

// Puts `change`(text, dice) in the place of every other of libFuzzer's own mutations, which know
// only bytes; those come also where the changed text is the same or too long.
template <typename Change>
std::size_t mutateText(std::uint8_t* data, std::size_t size, std::size_t limit, unsigned seed,
                       Change change) {
  Dice dice(seed);
  if (!dice.oneIn(2)) {
    const std::string_view before(reinterpret_cast<const char*>(data), size);
    const std::string after = change(before, dice);
    if (after.size() <= limit && after != before) {
      std::copy(after.begin(), after.end(), data);
      return after.size();
    }
  }
  return LLVMFuzzerMutate(data, size, limit);
}

}  // namespace Orvane::fuzz
