#pragma once

#include <bit>
#include <cstdint>

namespace Orvane {

class MenuNode;

// A child of a node: another node, or the number of a track in the tree's TrackTable, which stands
// for a fresh leaf of that track. Of a million tracks' leaves hardly any is ever asked for as a
// node: as numbers they take 4 bytes each instead of 32, and most of what is done with them takes
// no look elsewhere.
class Child {
 public:
  explicit Child(MenuNode* node) : place_(node) {}

  // Any number will do: where addresses have 32 bits there is no room for 2^31 tracks.
  static Child ofTrack(std::uint32_t number) {
    return Child(std::bit_cast<MenuNode*>((std::uintptr_t{number} << 1) | 1));
  }

  bool isNode() const { return (bits() & 1) == 0; }
  MenuNode* node() const { return place_; }  // only if isNode()
  std::uint32_t trackNumber() const { return static_cast<std::uint32_t>(bits() >> 1); }

 private:
  std::uintptr_t bits() const { return std::bit_cast<std::uintptr_t>(place_); }

  MenuNode* place_;  // a node's address is even
};

}  // namespace Orvane
