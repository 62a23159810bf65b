#include "inventory/decimal_number.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include "seeded_random.h"

namespace Orvane::test {
namespace {

// What the C library makes of the text up to its first zero byte.
std::int32_t libraryNumber(const std::string& text) {
  return static_cast<std::int32_t>(std::strtol(text.c_str(), nullptr, 10));
}

TEST(DecimalNumber, ReadsEdgeTextsAsTheLibraryDoes) {
  int (*const reference)(const char*) = std::atoi;
  for (const char* const text : {"",
                                 " ",
                                 "0",
                                 "-0",
                                 "+0",
                                 "-",
                                 "+",
                                 "--1",
                                 "+-1",
                                 "- 1",
                                 "-1",
                                 " -1z",
                                 "12abc",
                                 "abc",
                                 "1 2",
                                 "007",
                                 "0x10",
                                 "1e3",
                                 "\t\n\v\f\r 42",
                                 "\2401",
                                 "2147483647",
                                 "2147483648",
                                 "-2147483648",
                                 "-2147483649",
                                 "4294967295",
                                 "4294967296",
                                 "-4294967295",
                                 "-4294967296",
                                 "9223372036854775806",
                                 "9223372036854775807",
                                 "9223372036854775808",
                                 "9223372036854775817",
                                 "92233720368547758070",
                                 "-9223372036854775807",
                                 "-9223372036854775808",
                                 "-9223372036854775809",
                                 "-92233720368547758080",
                                 "99999999999999999999999999999",
                                 "-99999999999999999999999999999",
                                 "000000000000000000000000000000000000012",
                                 "18446744073709551615",
                                 "18446744073709551616",
                                 "92233720368547757",
                                 "92233720368547758",
                                 "922337203685477580",
                                 "922337203685477581"}) {
    EXPECT_EQ(parseDecimal(text), libraryNumber(text)) << "'" << text << "'";
    EXPECT_EQ(parseDecimal(text), reference(text)) << "'" << text << "'";
  }
}

TEST(DecimalNumber, SkipsWhatTheLibraryTakesForABlank) {
  for (int byte = 1; byte < 256; ++byte) {
    const std::string text = std::string(1, static_cast<char>(byte)) + "1";
    EXPECT_EQ(parseDecimal(text), libraryNumber(text)) << "byte " << byte;
  }
}

TEST(DecimalNumber, ReadsRandomTextsAsTheLibraryDoes) {
  std::mt19937 random = seededRandom(6);
  const std::string alphabet("00112345678999999+- \t\r\nxz.\0\xFF", 28);
  for (int i = 0; i < 100000; ++i) {
    std::string text(random() % 24, '\0');
    for (char& c : text) c = alphabet[random() % (i % 2 == 0 ? 17 : alphabet.size())];
    if (i % 3 == 0) text.insert(0, "-");
    ASSERT_EQ(parseDecimal(text), libraryNumber(text)) << "'" << text << "'";
  }
}

TEST(DecimalNumber, ReadsDigitsUpToAnyOtherByte) {
  std::mt19937 random = seededRandom(8);
  for (std::size_t size = 1; size <= 10; ++size) {
    for (int byte = 1; byte < 256; ++byte) {
      std::string text(size, '0');
      for (char& c : text) c = static_cast<char>('0' + random() % 10);
      ASSERT_EQ(parseDecimal(text), libraryNumber(text)) << "'" << text << "'";
      text[random() % size] = static_cast<char>(byte);
      ASSERT_EQ(parseDecimal(text), libraryNumber(text)) << "byte " << byte << " of " << size;
    }
  }
}

TEST(DecimalNumber, ReadsNumbersNearTheLimits) {
  std::mt19937 random = seededRandom(7);
  for (int i = 0; i < 20000; ++i) {
    const std::string digits =
        std::to_string(INT64_MAX - static_cast<std::int64_t>(random() % 200));
    for (const char* const sign : {"", "-", "+"}) {
      const std::string text = sign + digits + (i % 4 == 0 ? "9" : "");
      ASSERT_EQ(parseDecimal(text), libraryNumber(text)) << text;
    }
  }
}

TEST(DecimalNumber, StopsAtTheEndOfTheView) {
  const std::string_view text = "12345";
  EXPECT_EQ(parseDecimal(text.substr(0, 2)), 12);
  EXPECT_EQ(parseDecimal(text.substr(0, 0)), 0);
  EXPECT_EQ(parseDecimal(std::string_view("1\0002", 3)), 1);
  EXPECT_EQ(parseDecimal({}), 0);
}

}  // namespace
}  // namespace Orvane::test
