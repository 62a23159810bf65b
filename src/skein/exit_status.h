#pragma once

namespace Orvane {

// What `skein` ends with. Scripts depend on the numbers.
inline constexpr int kStatusYes = 0;  // done; sound; no difference
inline constexpr int kStatusNo = 1;   // faults, differences, or something asked for is missing
inline constexpr int kStatusTrouble =
    2;                                   // could not be done: unreadable, no inventory, write error
inline constexpr int kStatusUsage = 64;  // the command line was wrong

}  // namespace Orvane
