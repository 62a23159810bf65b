// The constants of the inventory file, shared by whatever writes or reads one.
// docs/inventory-format.md describes the file in prose. Players in the field read these files:
// no value here may change.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Orvane {

// All sizes and offsets in bytes; all integers in the file are unsigned and little-endian.
inline constexpr std::size_t kFileHeaderSize = 16;
inline constexpr std::size_t kTableDescriptorSize = 16;
inline constexpr std::size_t kTreeRecordSize = 12;
inline constexpr std::size_t kDataRecordSize = 72;
inline constexpr std::size_t kNodeRecordSize = 80;

// The name field of a data or node record: bytes as stored, zero-filled, no terminator when full.
inline constexpr std::size_t kNameFieldSize = 64;

// firstChildIndex of a media leaf.
inline constexpr std::uint32_t kNoChildren = 0xFFFFFFFF;

// First byte of a table descriptor.
enum class TableKind : std::uint8_t {
  kTree = 1,      // 12-byte tree records
  kData = 2,      // 72-byte data records
  kCombined = 3,  // 80-byte node records
};

// Constant fields of the file header and the table descriptors.
inline constexpr std::uint8_t kFileHeaderVersion = 1;
inline constexpr std::uint8_t kTableDescriptorVersion = 1;

static_assert(kDataRecordSize == 4 + kNameFieldSize + 1 + 1 + 2);
static_assert(kNodeRecordSize == 4 + 4 + kDataRecordSize);

}  // namespace Orvane
