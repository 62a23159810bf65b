#pragma once

#include <cstdint>
#include <span>

#include "output/inventory_format.h"

namespace Orvane {

// The header area is the file header and the descriptors after it.
inline constexpr std::size_t kOneTableHeaderSize = kFileHeaderSize + kTableDescriptorSize;
inline constexpr std::size_t kTwoTableHeaderSize = kFileHeaderSize + 2 * kTableDescriptorSize;

// Fills the header area of a file with `tableCount` tables, which the caller has zeroed: 32 bytes
// for one table, 48 for two. `count1` is the number of records in the combined or the tree table,
// `count2` that in the data table (unused with one table). Any other table count leaves the area as
// it is and says so on standard error.
void fillFileHeader(std::span<std::uint8_t> header, std::uint32_t tableCount, std::uint32_t count1,
                    std::uint32_t count2);

}  // namespace Orvane
