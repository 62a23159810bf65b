#include "output/track_set.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace Orvane::test {
namespace {

TEST(TrackSet, TellsWhatIsNew) {
  TrackSet set(130);
  for (std::uint32_t number = 0; number < 130; number += 3) EXPECT_TRUE(set.insert(number));
  for (std::uint32_t number = 0; number < 130; ++number) {
    EXPECT_EQ(set.insert(number), number % 3 != 0) << number;
    EXPECT_FALSE(set.insert(number)) << number;
  }
}

}  // namespace
}  // namespace Orvane::test
