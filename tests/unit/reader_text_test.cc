#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inventory_image.h"
#include "reader/menu_path.h"
#include "reader/text_escape.h"
#include "reader/tree_walk.h"
#include "reader/utf8.h"

namespace Orvane {
namespace {

TEST(Utf8, TakesOneCharacterAtATime) {
  EXPECT_EQ(firstUtf8Char("Ab").codePoint, 0x41U);
  EXPECT_EQ(firstUtf8Char("\xC3\xA9x").codePoint, 0xE9U);
  EXPECT_EQ(firstUtf8Char("\xC3\xA9x").length, 2);
  EXPECT_EQ(firstUtf8Char("\xE2\x82\xAC").codePoint, 0x20ACU);
  EXPECT_EQ(firstUtf8Char("\xF0\x9F\x8E\xB5").codePoint, 0x1F3B5U);
  EXPECT_FALSE(firstUtf8Char("\xC3").valid);
  EXPECT_FALSE(firstUtf8Char("\xC3(").valid);
  EXPECT_EQ(firstUtf8Char("\xC3(").length, 1);
}

TEST(Utf8, CountsTheValidBytes) {
  EXPECT_EQ(validUtf8Prefix(""), 0U);
  EXPECT_EQ(validUtf8Prefix("plain"), 5U);
  EXPECT_EQ(validUtf8Prefix("\xC3\xA9\xFFz"), 2U);
  EXPECT_TRUE(isUtf8("\xEF\xBF\xBD"));
  EXPECT_FALSE(isUtf8("a\xED\xBF\xBF"));
}

TEST(Utf8, TakesEveryLengthUpToItsLimits) {
  using Example = std::pair<std::string_view, std::uint32_t>;
  for (const auto& [text, codePoint] :
       {Example{"\x7F", 0x7F}, Example{"\xC2\x80", 0x80}, Example{"\xDF\xBF", 0x7FF},
        Example{"\xE0\xA0\x80", 0x800}, Example{"\xED\x9F\xBF", 0xD7FF},
        Example{"\xEE\x80\x80", 0xE000}, Example{"\xEF\xBF\xBF", 0xFFFF},
        Example{"\xF0\x90\x80\x80", 0x10000}, Example{"\xF4\x8F\xBF\xBF", 0x10FFFF}}) {
    const Utf8Char found = firstUtf8Char(text);
    EXPECT_TRUE(found.valid) << codePoint;
    EXPECT_EQ(found.codePoint, codePoint);
    EXPECT_EQ(found.length, text.size()) << codePoint;
    // Behind a text that ends early stands in memory what it lacks.
    for (std::size_t size = 1; size < text.size(); ++size) {
      EXPECT_FALSE(firstUtf8Char(text.substr(0, size)).valid) << codePoint;
    }
  }
}

TEST(Utf8, IsNeitherLongerThanNeededNorBeyondItsLimits) {
  for (const std::string_view bad :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xED\xA0\x80",
        "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
        "\xF7\xBF\xBF\xBF", "\xE2(\xAC", "\xE2\x82(", "\xF0\x9F\x8E("}) {
    const Utf8Char found = firstUtf8Char(bad);
    EXPECT_FALSE(found.valid) << bad;
    EXPECT_EQ(found.codePoint, 0U) << bad;
    EXPECT_EQ(found.length, 1) << bad;
  }
}

TEST(Utf8, HasNoLeadBytesBeyondF7) {
  for (int lead = 0xF8; lead <= 0xFF; ++lead) {
    const std::string text = static_cast<char>(lead) + std::string("\x90\x80\x80\x80\x80");
    EXPECT_FALSE(firstUtf8Char(text).valid) << lead;
    EXPECT_EQ(validUtf8Prefix(text), 0U) << lead;
  }
}

TEST(TextEscape, LeavesPrintableTextAlone) {
  EXPECT_EQ(escaped("Caf\xC3\xA9 \xF0\x9F\x8E\xB5 ~"), "Caf\xC3\xA9 \xF0\x9F\x8E\xB5 ~");
}

TEST(TextEscape, ShowsWhatIsNotPrintable) {
  EXPECT_EQ(escaped("a\nb\rc\td"), "a\\nb\\rc\\td");
  EXPECT_EQ(escaped(std::string_view("\0\x1B\x7F", 3)), "\\x00\\x1B\\x7F");
  EXPECT_EQ(escaped("\xC2\x9B"
                    "31m"),
            "\\xC2\\x9B31m");
  EXPECT_EQ(escaped("\xE2\x80\xAE"), "\\xE2\\x80\\xAE");
  EXPECT_EQ(escaped("\xFFz"), "\\xFFz");
  for (const char* shown : {" ", "~", "\xC2\xA0", "\xE2\x80\xA7", "\xE2\x80\xAF"}) {
    EXPECT_EQ(escaped(shown), shown);
  }
  EXPECT_EQ(escaped("\x1F\xC2\x80\xC2\x9F"), "\\x1F\\xC2\\x80\\xC2\\x9F");
  EXPECT_EQ(escaped("\xE2\x80\xA8"), "\\xE2\\x80\\xA8");
  EXPECT_EQ(escaped("\\"), "\\\\");
  EXPECT_EQ(escaped("a\"b/c", "\""), "a\\\"b/c");
}

TEST(TextEscape, ComesBack) {
  std::string all;
  for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
  EXPECT_EQ(unescaped(escaped(all)), all);
  EXPECT_EQ(unescaped(escaped(all, "/\"")), all);
  for (const char* bad : {"\\", "a\\", "\\x", "\\x4", "\\x4g", "\\q"}) {
    EXPECT_EQ(unescaped(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(unescaped("\\x41\\x6a\\x6A"), "Ajj");
}

TEST(TextEscape, TakesNoOtherEscapes) {
  for (int i = 0; i < 256; ++i) {
    const std::string text = {'\\', static_cast<char>(i), '4', '1'};
    const bool known = std::string_view("nrtx\\/\"").find(text[1]) != std::string_view::npos;
    EXPECT_EQ(unescaped(text).has_value(), known) << i;
  }
  // What stands behind the text in memory would make the escape whole.
  EXPECT_EQ(unescaped(std::string_view("\\n", 1)), std::nullopt);
  EXPECT_EQ(unescaped(std::string_view("\\x41", 2)), std::nullopt);
  EXPECT_EQ(unescaped(std::string_view("\\x41", 3)), std::nullopt);
}

// Behind the text no memory can be read.
TEST(TextEscape, EndsWithTheText) {
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  void* const pages =
      ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  char* const end = static_cast<char*>(pages) + page;
  ASSERT_EQ(::mprotect(end, page, PROT_NONE), 0);
  for (const std::string_view text : {"\\", "\\x", "\\x4", "a\\"}) {
    const std::string_view last(end - text.size(), text.size());
    std::copy(text.begin(), text.end(), end - text.size());
    EXPECT_EQ(unescaped(last), std::nullopt) << text;
    EXPECT_EQ(splitPath(last), std::nullopt) << text;
  }
  ::munmap(pages, 2 * page);
}

TEST(SplitPath, TakesNamesApart) {
  using Names = std::vector<std::string>;
  EXPECT_EQ(splitPath(""), Names{});
  EXPECT_EQ(splitPath("/"), Names{});
  EXPECT_EQ(splitPath("Artists"), Names{"Artists"});
  EXPECT_EQ(splitPath("/Artists//AC\\/DC/"), (Names{"Artists", "AC/DC"}));
  EXPECT_EQ(splitPath("a\\\\/b"), (Names{"a\\", "b"}));
  EXPECT_EQ(splitPath("a/b\\"), std::nullopt);
  EXPECT_EQ(splitPath("a\\q/b"), std::nullopt);
}

std::vector<std::string> pathsIn(const InventoryImage& image) {
  const InventoryView view = viewOf(image);
  TreeWalk walk(view);
  while (walk.next() != TreeWalk::Event::kEnd) {
  }
  const MenuPath path(view, walk.parents());
  std::vector<std::string> paths;
  for (std::uint32_t i = 0; i <= view.recordCount(); ++i) paths.push_back(path.of(i));
  return paths;
}

TEST(MenuPath, OfTheRootLeadsNoFurtherUp) {
  // The walk begins at record 1, which claims the root as its child.
  InventoryImage image(Layout::kOneTable, menu("Home", {menu("A", {menu("B")})}));
  image.firstChild(1, 0).childCount(1, 1);
  const InventoryView view = viewOf(image);
  TreeWalk walk(view, WalkOrder::kMenu, 1);
  while (walk.next() != TreeWalk::Event::kEnd) {
  }
  ASSERT_EQ(walk.parents()[0], 1U);
  EXPECT_EQ(MenuPath(view, walk.parents()).of(0), "/");
}

TEST(MenuPath, NamesTheWayDown) {
  const InventoryImage image(Layout::kOneTable,
                             menu("Home", {menu("A/B", {media("x\ny", 1)}), menu("C\\")}));
  EXPECT_EQ(pathsIn(image),
            (std::vector<std::string>{"/", "/A\\/B", "/C\\\\", "/A\\/B/x\\ny", "?"}));
}

TEST(MenuPath, KeepsTheEndOfALongWay) {
  Sketch tree = menu("last");
  for (int i = 0; i < 70; ++i) tree = menu(std::string("n").append(std::to_string(i)), {tree});
  const InventoryImage image(Layout::kTwoTable, tree);
  const std::vector<std::string> paths = pathsIn(image);
  EXPECT_EQ(paths[64].substr(0, 9), "/n68/n67/");
  EXPECT_EQ(paths[65].substr(0, 9), "/.../n67/");
  EXPECT_EQ(paths[70].substr(0, 9), "/.../n62/");
  EXPECT_EQ(paths[70].substr(paths[70].size() - 8), "/n0/last");
}

}  // namespace
}  // namespace Orvane
