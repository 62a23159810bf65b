#pragma once

#include <array>
#include <cstddef>
#include <mutex>

namespace Orvane {

// Mapped memory that nobody uses at the moment. To use it again saves the system clearing as much,
// which takes longer than most of what is done with it.
class SpareMemory {
 public:
  // Memory of that size, with any contents, from the smallest piece that is large enough; nullptr
  // when there is none. What is left of the piece stays here.
  std::byte* take(std::size_t size);

  // Keeps a piece for later. False when there are too many to be worth another.
  bool keep(std::byte* memory, std::size_t size);

 private:
  struct Piece {
    std::byte* memory;
    std::size_t size;
  };

  std::mutex mutex_;
  std::array<Piece, 64> pieces_;
  std::size_t count_ = 0;
};

}  // namespace Orvane
