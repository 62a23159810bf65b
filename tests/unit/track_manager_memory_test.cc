#include <gtest/gtest.h>

#include <cstddef>
#include <memory>

#include "allocation_probe.h"
#include "inventory/track_manager.h"

namespace Orvane::test {
namespace {

TEST(TrackManagerMemory, FreesWhatWasRegisteredEvenTwice) {
  const std::ptrdiff_t before = liveAllocations();
  {
    TrackManager manager;
    auto* const track = std::make_unique<Track>().release();
    auto* const playlist = std::make_unique<Playlist>("list", 1).release();
    for (int i = 0; i < 2; ++i) {
      manager.registerTrack(track);
      manager.registerPlaylist(playlist);
    }
    manager.addTrack("t", 1, "a", 2, "b", 3, "c", 4, 5);
    manager.registerTrack(manager.addTrack("t", 6, "a", 2, "b", 3, "c", 4, 5));
    manager.addPlaylist("another");
    manager.removeTrack(track);
    manager.clear();
    EXPECT_GT(liveAllocations(), before);
  }
  EXPECT_EQ(liveAllocations(), before);
}

}  // namespace
}  // namespace Orvane::test
