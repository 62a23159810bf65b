// Files that nobody should have to open, given to every verb.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <vector>

#include "all_verbs.h"
#include "inventory_image.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

class EveryVerb : public testing::TestWithParam<Layout> {};

INSTANTIATE_TEST_SUITE_P(Layouts, EveryVerb, testing::Values(Layout::kOneTable, Layout::kTwoTable));

Sketch smallTree() {
  return menu("R", {menu("Playlists", {media("x", 1)}), menu("Playlists", {media("x", 1)}),
                    menu("A", {media("y\xC3\xA9", 2, 3)})});
}

std::vector<std::uint8_t> bytesOf(const InventoryImage& image) {
  return {image.bytes().begin(), image.bytes().end()};
}

TEST_P(EveryVerb, AgreesOnASoundFile) {
  const InventoryImage image(GetParam(), smallTree());
  EXPECT_EQ(contradictionsIn(image.bytes()), "");
  EXPECT_EQ(checkOf(image.bytes()).status, 0);
}

TEST_P(EveryVerb, TakesAFileCutOffAnywhere) {
  const std::vector<std::uint8_t> all = bytesOf(InventoryImage(GetParam(), smallTree()));
  for (std::size_t size = 0; size < all.size(); ++size) {
    const std::vector<std::uint8_t> cut(all.begin(), all.begin() + static_cast<long>(size));
    EXPECT_EQ(contradictionsIn(cut), "") << size;
    EXPECT_EQ(checkOf(cut).status, size < 16 ? 2 : 1) << size;
  }
}

TEST_P(EveryVerb, TakesAnyByteChanged) {
  const std::vector<std::uint8_t> all = bytesOf(InventoryImage(GetParam(), smallTree()));
  for (std::size_t at = 0; at < all.size(); ++at) {
    for (const int mask : {0x01, 0x80, 0xFF}) {
      std::vector<std::uint8_t> changed = all;
      changed[at] = static_cast<std::uint8_t>(changed[at] ^ mask);
      EXPECT_EQ(contradictionsIn(changed), "") << at << " ^ " << mask;
      // The header and the descriptors hold nothing that may vary by itself.
      const std::size_t fixed = GetParam() == Layout::kOneTable ? 32 : 48;
      const int status = checkOf(changed).status;
      EXPECT_TRUE(at < fixed ? status == 1 : status <= 1) << at << " ^ " << mask;
    }
  }
}

TEST_P(EveryVerb, TakesAnyNumberAtItsLimits) {
  const InventoryImage sound(GetParam(), smallTree());
  for (std::size_t at = 0; at + 4 <= sound.size(); at += 4) {
    for (const std::uint32_t value : {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
      InventoryImage image = sound;
      image.number(at, value);
      EXPECT_EQ(contradictionsIn(image.bytes()), "") << at << " = " << value;
    }
  }
}

TEST_P(EveryVerb, TakesEveryMenuClaimingEverything) {
  InventoryImage image(GetParam(), menu("R", std::vector<Sketch>(300, menu("A"))));
  for (std::uint32_t i = 1; i <= 300; ++i) image.firstChild(i, i % 7).childCount(i, 300 - i);
  EXPECT_EQ(contradictionsIn(image.bytes()), "");
  EXPECT_EQ(checkOf(image.bytes()).status, 1);
}

TEST_P(EveryVerb, TakesAChainOfManyMenus) {
  // Deep enough to end any recursion, and short enough for all verbs in all formats.
  constexpr std::uint32_t kLength = 100000;
  const bool oneTable = GetParam() == Layout::kOneTable;
  InventoryImage image(GetParam(), menu("R"));
  std::vector<std::uint8_t> bytes = bytesOf(image);
  const std::size_t recordSize = oneTable ? 80 : 12;
  const std::size_t prefix = oneTable ? 32 : 48;
  std::vector<std::uint8_t> records(kLength * recordSize, 0);
  for (std::uint32_t i = 0; i < kLength; ++i) {
    for (std::size_t k = 0; k < 4; ++k) {
      records[i * recordSize + k] = static_cast<std::uint8_t>((i + 1) >> (8 * k));
    }
    records[i * recordSize + 4] = i + 1 < kLength ? 1 : 0;
    if (oneTable) records[i * recordSize + 76] = 7;
  }
  bytes.erase(bytes.begin() + static_cast<long>(prefix),
              bytes.begin() + static_cast<long>(prefix + recordSize));
  bytes.insert(bytes.begin() + static_cast<long>(prefix), records.begin(), records.end());
  const auto put = [&bytes](std::size_t at, std::uint32_t value) {
    for (std::size_t k = 0; k < 4; ++k) bytes[at + k] = static_cast<std::uint8_t>(value >> (8 * k));
  };
  put(24, kLength);
  if (!oneTable) put(36, 48 + 12 * kLength);
  EXPECT_EQ(checkOf(bytes).out, "");
  EXPECT_EQ(contradictionsIn(bytes), "");
  EXPECT_NE(decompileOf(bytes).messages.find("[too-deep]"), std::string::npos);
}

TEST_P(EveryVerb, WritesJsonForAnyDamage) {
  const InventoryImage sound(GetParam(), smallTree());
  for (std::size_t at = 0; at < sound.size(); ++at) {
    InventoryImage image = sound;
    image.byte(at, 0xFF);
    for (const std::string& text :
         {dumpOf(image.bytes(), Format::kJson).out, checkOf(image.bytes(), Format::kJson).out,
          statsOf(image.bytes(), Format::kJson).out,
          diffOf(sound.bytes(), image.bytes(), Format::kJson).out}) {
      EXPECT_TRUE(nlohmann::json::accept(text)) << at << ": " << text;
    }
  }
}

TEST(Hostile, CorpusReplays) {
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(SKEIN_CORPUS)) {
    std::ifstream in(entry.path(), std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(contradictionsIn(bytes), "") << entry.path();
    ++files;
  }
  EXPECT_GE(files, 20U);
}

}  // namespace
}  // namespace Orvane
