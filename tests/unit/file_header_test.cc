#include "output/file_header.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <iostream>

#include "test_support.h"

namespace Orvane {
namespace {

TEST(FileHeader, OfTwoTables) {
  std::array<std::uint8_t, 48> header{};
  fillFileHeader(header, 2, 0x01020304, 0xA1B2C3D4);
  // The data table begins at 48 + 12 * 0x01020304.
  constexpr std::array<std::uint8_t, 48> kExpected = {
      0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  //
      0x02, 0x00, 0x00, 0x00, 0x10, 0x00, 0x00, 0x00,  //
      0x01, 0x01, 0x00, 0x00, 0x30, 0x00, 0x00, 0x00,  //
      0x04, 0x03, 0x02, 0x01, 0x0C, 0x00, 0x00, 0x00,  //
      0x02, 0x01, 0x00, 0x00, 0x60, 0x24, 0x18, 0x0C,  //
      0xD4, 0xC3, 0xB2, 0xA1, 0x48, 0x00, 0x00, 0x00,
  };
  EXPECT_EQ(header, kExpected);
}

TEST(FileHeader, OfOneTable) {
  std::array<std::uint8_t, 32> header{};
  fillFileHeader(header, 1, 0x01020304, 99);
  constexpr std::array<std::uint8_t, 32> kExpected = {
      0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  //
      0x01, 0x00, 0x00, 0x00, 0x10, 0x00, 0x00, 0x00,  //
      0x03, 0x01, 0x00, 0x00, 0x20, 0x00, 0x00, 0x00,  //
      0x04, 0x03, 0x02, 0x01, 0x50, 0x00, 0x00, 0x00,
  };
  EXPECT_EQ(header, kExpected);
}

TEST(FileHeader, OffsetWrapsAt32Bits) {
  std::array<std::uint8_t, 48> header{};
  fillFileHeader(header, 2, 0x15555556, 0);  // 12 times this is 0x1'00000008
  EXPECT_EQ(header[36], 0x38);
  EXPECT_EQ(header[37], 0);
  EXPECT_EQ(header[38], 0);
  EXPECT_EQ(header[39], 0);
}

TEST(FileHeader, OtherTableCountsAreRefused) {
  for (const std::uint32_t tableCount : {0U, 3U, 0xFFFFFFFFU}) {
    std::array<std::uint8_t, 48> header{};
    header.fill(0xAB);
    const auto before = header;
    const test::CapturedStream standardError(std::cerr);
    const test::CapturedStream standardOutput(std::cout);
    fillFileHeader(header, tableCount, 1, 2);
    EXPECT_EQ(header, before);
    EXPECT_EQ(standardError.text(), "Not Supported Scenario\n");
    EXPECT_EQ(standardOutput.text(), "");
  }
}

}  // namespace
}  // namespace Orvane
