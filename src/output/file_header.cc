#include "output/file_header.h"

#include <iostream>

#include "output/little_endian.h"

namespace Orvane {

namespace {

void fillDescriptor(std::uint8_t* out, TableKind kind, std::uint32_t offset, std::uint32_t count,
                    std::size_t recordSize) {
  storeU8(out, static_cast<std::uint8_t>(kind));
  storeU8(out + 1, kTableDescriptorVersion);
  storeU32(out + 4, offset);
  storeU32(out + 8, count);
  storeU32(out + 12, static_cast<std::uint32_t>(recordSize));
}

}  // namespace

void fillFileHeader(std::span<std::uint8_t> header, std::uint32_t tableCount, std::uint32_t count1,
                    std::uint32_t count2) {
  if (tableCount != 1 && tableCount != 2) {
    std::cerr << "Not Supported Scenario\n";
    return;
  }
  storeU8(&header[1], kFileHeaderVersion);
  storeU32(&header[8], tableCount);
  storeU32(&header[12], static_cast<std::uint32_t>(kFileHeaderSize));
  std::uint8_t* const first = &header[kFileHeaderSize];
  if (tableCount == 1) {
    fillDescriptor(first, TableKind::kCombined, kOneTableHeaderSize, count1, kNodeRecordSize);
    return;
  }
  // 32-bit arithmetic throughout: the offset's field has no room for more.
  constexpr auto kFirstOffset = static_cast<std::uint32_t>(kTwoTableHeaderSize);
  constexpr auto kTreeRecord = static_cast<std::uint32_t>(kTreeRecordSize);
  fillDescriptor(first, TableKind::kTree, kFirstOffset, count1, kTreeRecordSize);
  fillDescriptor(first + kTableDescriptorSize, TableKind::kData,
                 kFirstOffset + kTreeRecord * count1, count2, kDataRecordSize);
}

}  // namespace Orvane
