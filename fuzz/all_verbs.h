#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Orvane {

// Runs every verb of the companion program on `bytes` as a file, in memory, and compares what they
// say. Returns what does not fit together, or an empty text: that `dump`, `annotate` and `stats`
// see damage exactly where `check` does, in every format; that `annotate` explains each byte once
// and in order; that only a sound file is turned back into XML without loss; that no file differs
// from itself.
std::string contradictionsIn(std::span<const std::uint8_t> bytes);

}  // namespace Orvane
