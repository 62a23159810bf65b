#include "tree/arena.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "allocation_probe.h"
#include "seeded_random.h"

namespace Orvane::test {
namespace {

std::string textOf(std::size_t length, std::uint32_t seed) {
  std::string text(length, '\0');
  for (std::size_t i = 0; i < length; ++i) text[i] = static_cast<char>(i * 31 + seed);
  return text;
}

TEST(Arena, KeepsTextsOfAllLengthsInPlace) {
  Arena arena;
  std::vector<std::pair<std::string_view, std::string>> kept;
  std::mt19937 random = seededRandom(2);
  for (std::uint32_t i = 0; i < 4000; ++i) {
    const std::size_t length = i % 97 == 0 ? random() % 100000 : random() % 80;
    std::string text = textOf(length, i);
    const std::string_view copy = arena.keep(text);
    kept.emplace_back(copy, std::move(text));
  }
  for (const auto& [copy, text] : kept) ASSERT_TRUE(copy == text) << text.size();
}

TEST(Arena, KeepsACopy) {
  Arena arena;
  std::string text = std::string("zero\0byte", 9);
  const std::string_view copy = arena.keep(text);
  text.assign("something else");
  EXPECT_EQ(copy, std::string_view("zero\0byte", 9));
}

TEST(Arena, EmptyTextStaysEmpty) {
  Arena arena;
  EXPECT_TRUE(arena.keep("").empty());
  EXPECT_TRUE(arena.keep({}).empty());
}

TEST(Arena, GivesBackOnlyWhatHasMemoryOfItsOwn) {
  Arena arena;
  const std::string_view before = arena.keep("before");
  void* const small = arena.allocate(8, 8);
  void* const first = arena.allocate(std::size_t{1} << 22, 8);
  auto* const second = static_cast<char*>(arena.allocate(std::size_t{1} << 22, 8));
  second[0] = 'x';
  EXPECT_FALSE(arena.giveBack(small));
  EXPECT_TRUE(arena.giveBack(first));
  EXPECT_FALSE(arena.giveBack(first));
  EXPECT_EQ(arena.keep(" after"), " after");
  EXPECT_EQ(before, "before");
  EXPECT_EQ(second[0], 'x');
  EXPECT_TRUE(arena.giveBack(second));
}

// As after many large blocks, of which the next is had before it is needed.
TEST(Arena, StartsAnewWhenCleared) {
  Arena arena;
  constexpr std::size_t kPiece = 4000;
  constexpr std::uint32_t kPieces = 25'000;
  for (int round = 0; round < 2; ++round) {
    std::vector<std::uint8_t*> pieces;
    for (std::uint32_t i = 0; i < kPieces; ++i) {
      pieces.push_back(static_cast<std::uint8_t*>(arena.allocate(kPiece, 1)));
      pieces.back()[0] = pieces.back()[kPiece - 1] = static_cast<std::uint8_t>(i);
    }
    for (std::uint32_t i = 0; i < kPieces; ++i) {
      ASSERT_EQ(pieces[i][0], static_cast<std::uint8_t>(i));
      ASSERT_EQ(pieces[i][kPiece - 1], static_cast<std::uint8_t>(i));
    }
    arena.clear();
    EXPECT_EQ(arena.keep("anew"), "anew");
  }
}

TEST(Arena, GoesOnWhenThereIsMemoryAgain) {
  Arena arena;
  constexpr std::size_t kPiece = 1000;
  std::vector<char*> pieces;
  pieces.reserve(10'000);
  for (int failures = 0; failures < 7; ++failures) {  // larger blocks don't come from operator new
    const auto fillWhatThereIs = [&] {
      const LimitedAllocations none(0);
      while (true) pieces.push_back(static_cast<char*>(arena.allocate(kPiece, 1)));
    };
    EXPECT_THROW(fillWhatThereIs(), std::bad_alloc);
    ASSERT_LT(pieces.size(), pieces.capacity());
    pieces.push_back(static_cast<char*>(arena.allocate(kPiece, 1)));
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    std::fill_n(pieces[i], kPiece, static_cast<char>(i));
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const char value = static_cast<char>(i);
    ASSERT_TRUE(std::all_of(pieces[i], pieces[i] + kPiece, [=](char c) { return c == value; }));
  }
}

TEST(Arena, PiecesAreAlignedAndApart) {
  Arena arena;
  struct Piece {
    std::uintptr_t begin;
    std::size_t size;
  };
  std::vector<Piece> pieces;
  std::mt19937 random = seededRandom(3);
  for (int i = 0; i < 3000; ++i) {
    const std::size_t alignment = std::size_t{1} << random() % 5;
    const std::size_t size = i % 50 == 0 ? random() % 200000 + 1 : random() % 100 + 1;
    void* const piece = arena.allocate(size, alignment);
    const auto begin = reinterpret_cast<std::uintptr_t>(piece);
    ASSERT_EQ(begin % alignment, 0U);
    std::memset(piece, i, size);
    pieces.push_back({begin, size});
  }
  std::sort(pieces.begin(), pieces.end(),
            [](const Piece& a, const Piece& b) { return a.begin < b.begin; });
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    ASSERT_LE(pieces[i - 1].begin + pieces[i - 1].size, pieces[i].begin);
  }
}

}  // namespace
}  // namespace Orvane::test
