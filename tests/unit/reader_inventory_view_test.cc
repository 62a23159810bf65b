#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "inventory_image.h"
#include "reader/inventory_view.h"

namespace Orvane {
namespace {

class InventoryViewOfLayout : public testing::TestWithParam<Layout> {};

INSTANTIATE_TEST_SUITE_P(Layouts, InventoryViewOfLayout,
                         testing::Values(Layout::kOneTable, Layout::kTwoTable));

TEST_P(InventoryViewOfLayout, ReadsWhatIsThere) {
  Sketch root = menu("Home", {menu("Albums", {media("Song", 17, 2)}), media("Other", 0xFFFFFFFE)});
  root.children[0].mediaId = 5;
  root.children[0].recType = 3;
  root.children[1].attribMask = 0xABCD;
  const InventoryImage image(GetParam(), root);
  const InventoryView view = viewOf(image);

  EXPECT_EQ(view.layout(), GetParam());
  ASSERT_EQ(view.recordCount(), 4U);
  EXPECT_EQ(view.dataCount(), 4U);
  EXPECT_EQ(view.links(0).firstChildIndex, 1U);
  EXPECT_EQ(view.links(0).childCount, 2U);
  EXPECT_EQ(view.links(1).firstChildIndex, 3U);
  EXPECT_FALSE(view.links(1).isLeaf());
  EXPECT_TRUE(view.links(2).isLeaf());
  EXPECT_EQ(view.itemOf(0).name(), "Home");
  EXPECT_EQ(view.itemOf(1).mediaId(), 5U);
  EXPECT_EQ(view.itemOf(1).recType(), 3);
  EXPECT_EQ(view.itemOf(2).mediaId(), 0xFFFFFFFEU);
  EXPECT_EQ(view.itemOf(2).attribMask(), 0xABCD);
  EXPECT_EQ(view.itemOf(3).name(), "Song");
  EXPECT_EQ(view.itemOf(3).rating(), 2);
  for (std::uint32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(view.recordOffset(i), image.recordOffset(i));
    EXPECT_EQ(view.itemOffset(i), image.itemOffset(i));
  }
}

TEST_P(InventoryViewOfLayout, AnswersForRecordsThatAreNotThere) {
  const InventoryImage image(GetParam(), menu("Home"));
  const InventoryView view = viewOf(image);
  for (const std::uint32_t record : {1U, 2U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    EXPECT_EQ(view.links(record).childCount, 0U);
    EXPECT_FALSE(view.links(record).isLeaf());
    EXPECT_FALSE(view.item(record));
    EXPECT_FALSE(view.itemOf(record));
    EXPECT_EQ(view.item(record).name(), "");
    EXPECT_EQ(view.item(record).mediaId(), 0U);
  }
}

TEST_P(InventoryViewOfLayout, TakesNamesOf64BytesWhole) {
  const std::string longest(64, 'n');
  const InventoryImage image(GetParam(), menu(longest, {media(longest, 0xFFFFFFFF)}));
  const InventoryView view = viewOf(image);
  EXPECT_EQ(view.itemOf(0).name(), longest);
  EXPECT_EQ(view.itemOf(1).name(), longest);
  EXPECT_EQ(view.itemOf(0).recType(), 7);
}

TEST_P(InventoryViewOfLayout, CutsNamesAtTheTerminator) {
  InventoryImage image(GetParam(), menu("Home"));
  image.name(0, std::string_view("A\0B", 3));
  const ItemView item = viewOf(image).item(0);
  EXPECT_EQ(item.name(), "A");
  EXPECT_EQ(item.nameField().substr(0, 5), std::string_view("A\0Be\0", 5));
}

TEST_P(InventoryViewOfLayout, ReadsNoMoreRecordsThanTheFileHolds) {
  for (const std::uint32_t count : {0U, 1U, 4U, 5U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    InventoryImage image(GetParam(), sampleTree());
    // With a byte more nothing proves another count of tree records.
    image.number(24, count).append("x");
    const InventoryView view = viewOf(image);
    EXPECT_EQ(view.recordCount(), std::min(count, image.recordCount())) << count;
    EXPECT_EQ(view.statedCount(0), count);
  }
}

TEST(InventoryView, ReadsTheTreeRecordsThatOffsetAndLengthProve) {
  for (const std::uint32_t count : {0U, 1U, 9U, 11U, 0xFFFFFFFFU}) {
    InventoryImage image(Layout::kTwoTable, sampleTree());
    image.number(24, count);
    EXPECT_EQ(viewOf(image).statedCount(0), 10U) << count;
    EXPECT_EQ(viewOf(image).recordCount(), 10U) << count;
    EXPECT_EQ(viewOf(image).itemOf(9).mediaId(), 3U) << count;
  }
}

TEST_P(InventoryViewOfLayout, OpensAtEveryLengthFromTheHeaderOn) {
  InventoryImage image(GetParam(), sampleTree());
  const std::vector<std::uint8_t> all(image.bytes().begin(), image.bytes().end());
  for (std::size_t size = 0; size <= all.size(); ++size) {
    // A block of its own size lets a sanitizer see any read behind it.
    const std::vector<std::uint8_t> cut(all.begin(), all.begin() + static_cast<long>(size));
    std::string reason;
    const auto view = InventoryView::open(cut, reason);
    ASSERT_EQ(view.has_value(), size >= kFileHeaderSize) << size;
    if (!view) {
      EXPECT_FALSE(reason.empty());
      continue;
    }
    EXPECT_EQ(view->layout(), GetParam()) << size;
    for (std::uint32_t i = 0; i < view->recordCount(); ++i) {
      EXPECT_LE(view->recordOffset(i) + (GetParam() == Layout::kOneTable ? 80 : 12), size);
    }
    for (std::uint32_t i = 0; i < view->dataCount(); ++i) {
      EXPECT_LE(view->itemOffset(i) + 72, size);
    }
  }
}

TEST_P(InventoryViewOfLayout, ToleratesOneWrongHeaderField) {
  for (const std::size_t offset : {0U, 1U, 2U, 5U, 8U, 12U}) {
    InventoryImage image(GetParam(), sampleTree());
    image.byte(offset, 0x99);
    const InventoryView view = viewOf(image);
    EXPECT_EQ(view.layout(), GetParam()) << offset;
    EXPECT_EQ(view.recordCount(), image.recordCount()) << offset;
  }
}

TEST_P(InventoryViewOfLayout, KeepsItsLayoutWhenOneSignOfItIsWrong) {
  const std::uint8_t otherCount = GetParam() == Layout::kOneTable ? 2 : 1;
  const std::uint8_t otherKind = GetParam() == Layout::kOneTable ? 1 : 3;
  const std::uint8_t otherSize = GetParam() == Layout::kOneTable ? 12 : 80;
  using Damage = std::pair<std::size_t, std::uint8_t>;
  for (const auto& [offset, value] :
       {Damage{8, otherCount}, Damage{16, otherKind}, Damage{28, otherSize}}) {
    InventoryImage image(GetParam(), sampleTree());
    image.byte(offset, value);
    EXPECT_EQ(viewOf(image).layout(), GetParam()) << offset;
  }
}

TEST(InventoryView, SaysWhatIsNoInventory) {
  const auto reasonFor = [](std::string_view text) {
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    std::string reason;
    EXPECT_FALSE(InventoryView::open(bytes, reason).has_value());
    return reason;
  };
  EXPECT_EQ(reasonFor(""), "the file is empty");
  EXPECT_EQ(reasonFor("abc"), "not an inventory: 3 bytes are less than the file header of 16");
  EXPECT_EQ(reasonFor("<inventory name=\"a text file\"/>"),
            "not an inventory: it does not begin with an inventory's file header");
  EXPECT_EQ(reasonFor(std::string(4096, '\0')),
            "not an inventory: it does not begin with an inventory's file header");
}

TEST(InventoryView, FindsTheDataTableWhenOneOfItsSignsIsWrong) {
  const auto rootName = [](const InventoryImage& image) {
    return std::string(viewOf(image).item(0).name());
  };
  InventoryImage wrongOffset(Layout::kTwoTable, sampleTree());
  wrongOffset.number(36, 50);
  EXPECT_EQ(rootName(wrongOffset), "Home");
  InventoryImage fewerRecords(Layout::kTwoTable, sampleTree());
  fewerRecords.number(24, 3);
  EXPECT_EQ(rootName(fewerRecords), "Home");
  InventoryImage moreRecords(Layout::kTwoTable, sampleTree());
  moreRecords.number(24, 0xFFFFFFFF);
  EXPECT_EQ(rootName(moreRecords), "Home");
  InventoryImage trailing(Layout::kTwoTable, sampleTree());
  trailing.append("xyz");
  EXPECT_EQ(rootName(trailing), "Home");
  // No table begins in the header or behind the end.
  EXPECT_EQ(rootName(trailing.number(36, 20)), "Home");
  EXPECT_EQ(rootName(trailing.number(36, 1'000'000)), "Home");
}

TEST(InventoryView, TakesAnOffsetForTheLowHalfOfWhereTheTreeTableEnds) {
  InventoryImage image(Layout::kTwoTable, sampleTree());
  // So many records more end 12 GiB further on. With a byte more nothing proves another count.
  image.number(24, image.recordCount() + (1U << 30)).append("x");
  EXPECT_EQ(viewOf(image).tableOffset(1), image.itemOffset(0) + (std::uint64_t{12} << 30));
}

TEST(InventoryView, KnowsPlaylistsMenusByNameAndType) {
  Sketch otherType = menu("Playlists");
  otherType.recType = 6;
  const InventoryImage image(Layout::kTwoTable,
                             menu("Home", {menu("Playlists"), menu("playlists"), otherType}));
  const InventoryView view = viewOf(image);
  EXPECT_TRUE(view.isPlaylistsMenu(1));
  EXPECT_FALSE(view.isPlaylistsMenu(2));
  EXPECT_FALSE(view.isPlaylistsMenu(3));
  EXPECT_FALSE(view.isPlaylistsMenu(99));
  EXPECT_TRUE(view.mayBePlaylistsMenu(1));
  EXPECT_FALSE(view.mayBePlaylistsMenu(2));
  EXPECT_TRUE(view.mayBePlaylistsMenu(3));
  EXPECT_FALSE(view.mayBePlaylistsMenu(99));
}

}  // namespace
}  // namespace Orvane
