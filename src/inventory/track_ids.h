#pragma once

#include <cstdint>

namespace Orvane {

// The ids with which a track comes.
struct TrackIds {
  std::uint32_t media;
  std::uint32_t artist;
  std::uint32_t album;
  std::uint32_t genre;
};

}  // namespace Orvane
