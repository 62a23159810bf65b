#pragma once

#include <array>
#include <cstddef>
#include <mutex>

namespace Orvane {

// Mapped memory that nobody uses at the moment. To use its pages again saves the system making
// others, which takes longer than most of what is done with them.
class SpareMemory {
 public:
  struct Piece {
    std::byte* memory = nullptr;
    std::size_t size = 0;
  };

  // The piece kept last or, when that is larger, its first `size` bytes; an empty one when there is
  // none.
  Piece take(std::size_t size);

  // Keeps a piece for later. False when there are too many to be worth another.
  bool keep(Piece piece);

 private:
  std::mutex mutex_;
  std::array<Piece, 64> pieces_;
  std::size_t count_ = 0;
};

}  // namespace Orvane
