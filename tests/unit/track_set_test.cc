#include "output/track_set.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace Orvane::test {
namespace {

TEST(TrackSet, TellsWhatIsNew) {
  for (const std::uint32_t bound : {1U, 63U, 64U, 65U, 128U, 130U}) {
    TrackSet set(bound);
    for (std::uint32_t number = 0; number < bound; number += 3) EXPECT_TRUE(set.insert(number));
    for (std::uint32_t number = 0; number < bound; ++number) {
      EXPECT_EQ(set.insert(number), number % 3 != 0) << number << " below " << bound;
      EXPECT_FALSE(set.insert(number)) << number << " below " << bound;
    }
  }
}

}  // namespace
}  // namespace Orvane::test
