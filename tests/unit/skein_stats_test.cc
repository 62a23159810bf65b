#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "inventory_image.h"
#include "skein/stats.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

nlohmann::json statsJson(const InventoryImage& image) {
  const VerbResult result = statsOf(image.bytes(), Format::kJson);
  EXPECT_EQ(result.status, 0);
  return nlohmann::json::parse(result.out)["files"][0];
}

TEST(Stats, CountsKinds) {
  std::vector<Sketch> menus;
  for (const int recType : {3, 3, 4, 5, 6, 7, 11, 12, 13, 99}) {
    menus.push_back(menu("m"));
    menus.back().recType = static_cast<std::uint8_t>(recType);
  }
  menus.push_back(media("x", 1));
  const auto stats = statsJson(InventoryImage(Layout::kOneTable, menu("R", menus)));
  EXPECT_EQ(stats["kinds"], nlohmann::json::parse(
                                R"({"media":1,"menu":3,"album":2,"artist":1,"genre":1,"playlist":1,
                    "one-star":1,"two-stars":1,"three-stars":1})"));
  EXPECT_EQ(stats["reached"], 12);
}

TEST(Stats, MeasuresTheShape) {
  const auto stats = statsJson(InventoryImage(Layout::kTwoTable, sampleTree()));
  EXPECT_EQ(stats["depth"], 3);
  EXPECT_EQ(stats["deepest"], "/Artists/Anna/Song A");
  EXPECT_EQ(stats["fanOut"], nlohmann::json::parse(R"([{"from":0,"to":0,"menus":1},
      {"from":1,"to":1,"menus":1},{"from":2,"to":3,"menus":3}])"));
  EXPECT_EQ(stats["widest"], nlohmann::json::parse(R"([
      {"record":0,"path":"/","children":3},{"record":2,"path":"/Songs","children":3},
      {"record":4,"path":"/Artists/Anna","children":2},
      {"record":1,"path":"/Artists","children":1}])"));
}

TEST(Stats, CountsBytesAndWhatSharingSaved) {
  InventoryImage image(Layout::kTwoTable, menu("R", {media("x", 1), media("x", 1)}));
  auto stats = statsJson(image);
  EXPECT_EQ(stats["tableBytes"],
            nlohmann::json::parse(R"({"header":48,"firstTable":36,"dataTable":216,
      "other":0,"savedBySharing":0})"));
  image.dataIndex(2, 1).number(40, 2).cutTo(image.size() - 72);
  stats = statsJson(image);
  EXPECT_EQ(stats["tableBytes"]["savedBySharing"], 72);
  EXPECT_EQ(stats["tableBytes"]["dataTable"], 144);
}

TEST(Stats, CountsNamesThatMayHaveBeenCut) {
  const auto stats = statsJson(InventoryImage(
      Layout::kOneTable,
      menu(std::string(62, 'a'), {menu(std::string(61, 'b')), menu(std::string(63, 'c')),
                                  menu(std::string(64, 'd')), menu(std::string(62, 'e'))})));
  EXPECT_EQ(stats["namesOf62"], 2);
  EXPECT_EQ(stats["namesOf64"], 1);
}

TEST(Stats, CountsWhatIsNotStored) {
  const auto stats = statsJson(InventoryImage(
      Layout::kTwoTable, menu("R", {menu("Playlists", {media("a", 1)}), menu("Playlists"),
                                    media("b", 2, 0, {menu("")})})));
  EXPECT_EQ(stats["displaced"], 1);
  EXPECT_EQ(stats["leavesWithCount"], 1);
}

TEST(Stats, CountsWhatCanBeReachedOfADamagedFile) {
  InventoryImage image(Layout::kOneTable, sampleTree());
  image.firstChild(4, 1);
  const VerbResult result = statsOf(image.bytes(), Format::kJson);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(nlohmann::json::parse(result.out)["files"][0]["reached"], 8);
  EXPECT_NE(result.messages.find("damaged"), std::string::npos);
}

TEST(Stats, OneTableHasNoDataTableAndSharesNothing) {
  const auto stats = statsJson(InventoryImage(Layout::kOneTable, sampleTree()));
  EXPECT_EQ(stats["tableBytes"],
            nlohmann::json::parse(R"({"header":32,"firstTable":800,"dataTable":0,
      "other":0,"savedBySharing":0})"));
}

TEST(Stats, UnusedDataRecordsSaveNothing) {
  InventoryImage image(Layout::kTwoTable, menu("R"));
  image.addDataRecord();
  const auto out = statsOf(image.bytes(), Format::kJson).out;
  EXPECT_EQ(nlohmann::json::parse(out)["files"][0]["tableBytes"]["savedBySharing"], 0);
}

TEST(Stats, TextTellsOtherBytesOfEitherLayout) {
  for (const Layout layout : {Layout::kOneTable, Layout::kTwoTable}) {
    InventoryImage image(layout, menu("R"));
    EXPECT_EQ(statsOf(image.bytes()).out.find("  other"), std::string::npos);
    EXPECT_NE(statsOf(image.append("more").bytes()).out.find("  other"), std::string::npos);
  }
}

TEST(Stats, TextLeavesOutWhatThereIsNoneOf) {
  const std::string plain = statsOf(InventoryImage(Layout::kTwoTable, menu("R")).bytes()).out;
  for (const char* const absent :
       {"without stored contents", "with a child count", "  other", "widest menus", "  media"}) {
    EXPECT_EQ(plain.find(absent), std::string::npos) << plain;
  }
  InventoryImage rich(Layout::kTwoTable,
                      menu("R", {menu("Playlists", {media("a", 1)}), menu("Playlists"),
                                 media("b", 2, 0, {menu("")})}));
  rich.append("more");
  const std::string text = statsOf(rich.bytes()).out;
  for (const char* const present :
       {"without stored contents", "with a child count", "  other", "widest menus", "  media"}) {
    EXPECT_NE(text.find(present), std::string::npos) << text;
  }
}

TEST(Stats, WithoutARootNothingIsDeepest) {
  InventoryImage none(Layout::kOneTable, menu("R"));
  none.number(24, 0).cutTo(32);
  EXPECT_EQ(statsOf(none.bytes()).out.find('?'), std::string::npos);
  const auto json = nlohmann::json::parse(statsOf(none.bytes(), Format::kJson).out);
  EXPECT_TRUE(json["files"][0]["deepest"].is_null());
}

TEST(Stats, OnlyLinesSayWhatTheyAre) {
  const InventoryImage image(Layout::kTwoTable, menu("R"));
  EXPECT_FALSE(statsJson(image).contains("type"));
  std::istringstream lines(statsOf(image.bytes(), Format::kJsonLines).out);
  for (const char* const type : {"file", "stats", "end"}) {
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(nlohmann::json::parse(line)["type"], type) << line;
  }
}

}  // namespace
}  // namespace Orvane
