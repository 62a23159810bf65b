#include "errors/printable.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvane::test {
namespace {

TEST(Printable, LeavesReadableTextAlone) {
  EXPECT_EQ(printable(""), "");
  EXPECT_EQ(printable("Road Mix ~!\"'"), "Road Mix ~!\"'");
  EXPECT_EQ(printable("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xB5"),
            "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xB5");
}

TEST(Printable, DoublesBackslashes) {
  EXPECT_EQ(printable("a\\b\\"), "a\\\\b\\\\");
}

TEST(Printable, ShowsControlCharactersInHexadecimal) {
  EXPECT_EQ(printable(std::string_view("\0\t\n\r\x1B\x1F\x7F", 7)),
            "\\x00\\x09\\x0A\\x0D\\x1B\\x1F\\x7F");
  EXPECT_EQ(printable("\xC2\x80\xC2\x9F"), "\\xC2\\x80\\xC2\\x9F");
  EXPECT_EQ(printable("\xC2\xA0"), "\xC2\xA0");
}

TEST(Printable, ShowsWhatIsNoUtf8InHexadecimal) {
  EXPECT_EQ(printable("\xE9t\xE9"), "\\xE9t\\xE9");
  EXPECT_EQ(printable("\x80\xBF"), "\\x80\\xBF");
  EXPECT_EQ(printable("\xFE\xFF"), "\\xFE\\xFF");
  EXPECT_EQ(printable("\xC3"), "\\xC3");
  EXPECT_EQ(printable("\xE2\x82"), "\\xE2\\x82");
  EXPECT_EQ(printable("\xE2\x82z"), "\\xE2\\x82z");
  EXPECT_EQ(printable("\xF0\x9F\x8E"), "\\xF0\\x9F\\x8E");
  EXPECT_EQ(printable("\xC3\xC3\xA9"), "\\xC3\xC3\xA9");
}

// What stands behind the text in memory would make the last character whole.
TEST(Printable, LooksAtTheTextOnly) {
  EXPECT_EQ(printable(std::string_view("\xC3\xA9", 1)), "\\xC3");
  EXPECT_EQ(printable(std::string_view("\xE2\x82\xAC", 2)), "\\xE2\\x82");
  EXPECT_EQ(printable(std::string_view("\xF0\x9F\x8E\xB5", 3)), "\\xF0\\x9F\\x8E");
}

TEST(Printable, AcceptsOnlyShortestFormsOfRealCodePoints) {
  EXPECT_EQ(printable("\xC0\x80\xC1\xBF"), "\\xC0\\x80\\xC1\\xBF");
  EXPECT_EQ(printable("\xE0\x9F\xBF"), "\\xE0\\x9F\\xBF");
  EXPECT_EQ(printable("\xE0\xA0\x80"), "\xE0\xA0\x80");
  EXPECT_EQ(printable("\xED\x9F\xBF"), "\xED\x9F\xBF");
  EXPECT_EQ(printable("\xED\xA0\x80"), "\\xED\\xA0\\x80");
  EXPECT_EQ(printable("\xF0\x8F\xBF\xBF"), "\\xF0\\x8F\\xBF\\xBF");
  EXPECT_EQ(printable("\xF0\x90\x80\x80"), "\xF0\x90\x80\x80");
  EXPECT_EQ(printable("\xF4\x8F\xBF\xBF"), "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(printable("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");
  EXPECT_EQ(printable("\xF5\x80\x80\x80"), "\\xF5\\x80\\x80\\x80");
}

}  // namespace
}  // namespace Orvane::test
