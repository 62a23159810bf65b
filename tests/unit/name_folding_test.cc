#include "inventory/name_folding.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <random>
#include <string>

#include "seeded_random.h"

namespace Orvane::test {
namespace {

// The order itself, a character at a time.
bool comesBefore(const std::string& left, const std::string& right) {
  for (std::size_t i = 0; i < left.size() && i < right.size(); ++i) {
    const auto letter = [](char c) {
      const auto byte = static_cast<signed char>(c);
      return byte < 0 ? int{byte} : std::toupper(byte);
    };
    if (letter(left[i]) != letter(right[i])) return letter(left[i]) < letter(right[i]);
  }
  return left.size() < right.size();
}

TEST(NameFolding, OrdersEachPairOfBytes) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const std::string left(1, static_cast<char>(a));
      const std::string right(1, static_cast<char>(b));
      ASSERT_EQ(foldName(left) < foldName(right), comesBefore(left, right)) << a << " " << b;
    }
  }
}

TEST(NameFolding, OrdersRandomNames) {
  std::mt19937 random = seededRandom(4);
  const std::string alphabet("aAbBzZ@[`{\0\x7F\x80\xFF", 14);
  const auto name = [&] {
    std::string text(random() % 5, '\0');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    return text;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::string left = name();
    const std::string right = name();
    ASSERT_EQ(foldName(left) < foldName(right), comesBefore(left, right));
    ASSERT_EQ(foldName(left) == foldName(right),
              !comesBefore(left, right) && !comesBefore(right, left));
  }
}

TEST(NameFolding, PrefixComesFirst) {
  EXPECT_LT(foldName(""), foldName(std::string(1, '\x80')));
  EXPECT_LT(foldName("ab"), foldName("ABC"));
  EXPECT_LT(foldName("ab"), foldName(std::string("ab\0", 3)));
}

TEST(NameFolding, LetterCaseOfAsciiAloneIsNoDifference) {
  EXPECT_EQ(foldName("Road Mix"), foldName("rOAD mIX"));
  EXPECT_NE(foldName("\xC3\xA9"), foldName("\xC3\x89"));  // small and capital, but no ASCII
}

}  // namespace
}  // namespace Orvane::test
