// Random trees, written by the writers and looked at by every verb.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "tree/menu_tree.h"
#include "verb_runner.h"
#include "written_inventory.h"

namespace Orvane {
namespace {

// Makes trees with few names and ids, so that much is shared, and with everything that is rare.
class TreeMaker {
 public:
  // `plain`: only what an XML menu tree can say.
  TreeMaker(unsigned seed, bool plain) : random_(seed), plain_(plain) {}

  void fill(MenuTree& tree) {
    if (chance(2)) tree.getRoot()->setName(name());
    playlistsType_ = chance(3) ? 6 : 7;
    addChildren(*tree.getRoot(), 0);
  }

 private:
  std::uint32_t below(std::uint32_t limit) {
    return std::uniform_int_distribution<std::uint32_t>(0, limit - 1)(random_);
  }
  bool chance(std::uint32_t oneIn) { return below(oneIn) == 0; }

  std::string name() {
    static const std::vector<std::string> kNames = {"A",
                                                    "B",
                                                    "Playlists",
                                                    "playlists",
                                                    "",
                                                    std::string(62, 'c'),
                                                    "a \"<&>",
                                                    "\xC3\xA9t\xC3\xA9",
                                                    "x/y\\z",
                                                    "tab\tline\nreturn\r",
                                                    std::string(63, 'd'),
                                                    std::string(64, 'e')};
    static const std::vector<std::string> kOddNames = {
        "\xFF\xFE", "bell\a", std::string("nul\0after", 9), "\xED\xA0\x80"};
    if (!plain_ && chance(6)) return kOddNames[below(4)];
    return kNames[below(static_cast<std::uint32_t>(kNames.size()))];
  }

  void addChildren(MenuNode& parent, int depth) {
    const std::uint32_t count = below(depth == 0 ? 8 : 5);
    for (std::uint32_t i = 0; i < count; ++i) {
      auto node = std::make_unique<MenuNode>();
      const bool leaf = chance(2);
      const std::string text = name();
      std::uint32_t mediaId = leaf || !plain_ ? below(3) : 0;
      std::uint32_t recType = chance(2) ? 7 : below(14);
      if (!plain_ && chance(10)) recType = below(100000);
      // What such a menu's record shows decides where its contents are; see the deferral below.
      if (text == "Playlists") recType = playlistsType_;
      const std::uint32_t rating = leaf || !plain_ ? below(5) : 0;
      node->setAll(leaf ? NODE_TYPE_MEDIA : NODE_TYPE_MENU, mediaId, text, recType, rating,
                   chance(4) ? below(0x10000) : 0);
      if (depth < 5 && (!leaf || chance(8))) addChildren(*node, depth + 1);
      parent.addChild(std::move(node));
    }
  }

  std::mt19937 random_;
  bool plain_;
  std::uint32_t playlistsType_ = 7;
};

std::string cut(std::string_view name) {
  const std::string_view stored = name.substr(0, 64);
  return std::string(stored.substr(0, stored.find('\0')));
}

// What a node shows besides its place: kind, id, name, type, rating, attributes, child count.
using Shown = std::tuple<bool, std::uint32_t, std::string, std::uint32_t, std::uint32_t,
                         std::uint32_t, std::uint64_t>;

Shown shownBy(const MenuNode& node) {
  return {node.getNodeType() == NODE_TYPE_MEDIA,
          node.getMediaId(),
          cut(node.getName()),
          node.getRecType() & 0xFF,
          node.getRating() & 0xFF,
          node.getAttribMask() & 0xFFFF,
          node.childCount()};
}

bool isDisplaced(const MenuNode& parent, std::size_t child) {
  const auto isPlaylists = [](const MenuNode& node) {
    return node.getName() == "Playlists" && node.getRecType() == 7;
  };
  if (!isPlaylists(*parent.childrenBegin()[child])) return false;
  for (std::size_t i = child + 1; i < parent.childCount(); ++i) {
    if (isPlaylists(*parent.childrenBegin()[i])) return true;
  }
  return false;
}

struct ExpectedNode {
  int depth;
  Shown shown;
};

// The nodes in menu order as far as the layout stores them, and what the first node with the same
// id and name brings into a shared record, in the order of storage.
void expectNodes(const MenuNode& node, int depth, Layout layout, std::vector<ExpectedNode>& nodes) {
  nodes.push_back({depth, shownBy(node)});
  if (node.getNodeType() == NODE_TYPE_MEDIA) return;
  for (std::size_t i = 0; i < node.childCount(); ++i) {
    const MenuNode& child = *node.childrenBegin()[i];
    if (layout == Layout::kTwoTable && isDisplaced(node, i)) {
      // Whether it was a media leaf is not in the file.
      nodes.push_back({depth + 1, shownBy(child)});
      std::get<0>(nodes.back().shown) = false;
    } else {
      expectNodes(child, depth + 1, layout, nodes);
    }
  }
}

using SharedKey = std::pair<std::uint32_t, std::string>;

void noteFamilies(const MenuNode& node, std::map<SharedKey, Shown>& firsts) {
  if (node.getNodeType() == NODE_TYPE_MEDIA) return;
  const MenuNode* last = nullptr;
  for (std::size_t i = 0; i < node.childCount(); ++i) {
    const MenuNode& child = *node.childrenBegin()[i];
    firsts.try_emplace({child.getMediaId(), cut(child.getName())}, shownBy(child));
  }
  for (std::size_t i = 0; i < node.childCount(); ++i) {
    const MenuNode& child = *node.childrenBegin()[i];
    if (child.getName() == "Playlists" && child.getRecType() == 7) {
      last = &child;
    } else {
      noteFamilies(child, firsts);
    }
  }
  if (last != nullptr) noteFamilies(*last, firsts);
}

// A name as the JSON formats give it: as text, or by its bytes up to the zero fill.
std::string nameIn(const nlohmann::json& node) {
  if (!node.contains("bytes")) return node["name"];
  std::string bytes;
  const std::string hex = node["bytes"];
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return cut(bytes);
}

void expectDumpEqualsTree(const MenuTree& tree, Layout layout, Bytes bytes) {
  std::vector<ExpectedNode> expected;
  expectNodes(*tree.getRoot(), 0, layout, expected);
  if (layout == Layout::kTwoTable) {
    std::map<SharedKey, Shown> firsts;
    noteFamilies(*tree.getRoot(), firsts);
    for (std::size_t i = 1; i < expected.size(); ++i) {
      Shown& shown = expected[i].shown;
      const Shown& first = firsts.at({std::get<1>(shown), std::get<2>(shown)});
      std::get<3>(shown) = std::get<3>(first);
      std::get<4>(shown) = std::get<4>(first);
      std::get<5>(shown) = std::get<5>(first);
    }
  }
  const VerbResult dump = dumpOf(bytes, Format::kJsonLines);
  ASSERT_EQ(dump.status, 0);
  std::istringstream lines(dump.out);
  std::string line;
  std::size_t count = 0;
  while (std::getline(lines, line)) {
    const nlohmann::json node = nlohmann::json::parse(line);
    if (node["type"] != "node") continue;
    ASSERT_LT(count, expected.size());
    EXPECT_EQ(node["depth"], expected[count].depth) << line;
    const Shown shown{node["kind"] == "media", node["mediaId"],    nameIn(node),    node["recType"],
                      node["rating"],          node["attribMask"], node["children"]};
    EXPECT_EQ(shown, expected[count].shown) << line;
    ++count;
  }
  EXPECT_EQ(count, expected.size());
}

class RandomTree : public testing::TestWithParam<Layout> {};

INSTANTIATE_TEST_SUITE_P(Layouts, RandomTree,
                         testing::Values(Layout::kOneTable, Layout::kTwoTable));

constexpr unsigned kTrees = 300;

TEST_P(RandomTree, IsSoundAsWritten) {
  for (unsigned seed = 0; seed < kTrees; ++seed) {
    MenuTree tree;
    TreeMaker(seed, false).fill(tree);
    const auto bytes = written(tree, GetParam());
    const VerbResult result = checkOf(bytes);
    EXPECT_EQ(result.status, 0) << seed << '\n' << result.out;
    MenuTree plain;
    TreeMaker(seed, true).fill(plain);
    EXPECT_EQ(checkOf(written(plain, GetParam())).out, "") << seed;
  }
}

TEST_P(RandomTree, IsDumpedAsItIs) {
  for (unsigned seed = 0; seed < kTrees; ++seed) {
    MenuTree tree;
    TreeMaker(seed, false).fill(tree);
    SCOPED_TRACE(seed);
    expectDumpEqualsTree(tree, GetParam(), written(tree, GetParam()));
  }
}

TEST_P(RandomTree, MakesTheSameBytesAgainFromXml) {
  std::set<std::size_t> sizes;
  for (unsigned seed = 0; seed < kTrees; ++seed) {
    MenuTree tree;
    TreeMaker(seed, true).fill(tree);
    const auto bytes = written(tree, GetParam());
    sizes.insert(bytes.size());
    const VerbResult xml = decompileOf(bytes);
    EXPECT_EQ(xml.status, 0) << seed << '\n' << xml.messages;
    EXPECT_EQ(compiled(xml.out, GetParam()), bytes) << seed << '\n' << xml.out;
  }
  EXPECT_GT(sizes.size(), 30U);
}

// Where XML cannot say it all, that is said: whenever no loss is reported, the bytes are the same.
TEST_P(RandomTree, NamesEveryLoss) {
  unsigned lossless = 0;
  for (unsigned seed = 0; seed < 5 * kTrees; ++seed) {
    MenuTree tree;
    TreeMaker(seed, false).fill(tree);
    const auto bytes = written(tree, GetParam());
    const VerbResult xml = decompileOf(bytes);
    const bool same = compiled(xml.out, GetParam()) == bytes;
    if (xml.status == 0) {
      ++lossless;
      EXPECT_TRUE(same) << seed << '\n' << xml.out;
    }
    EXPECT_EQ(xml.status == 0, xml.messages.empty()) << seed;
  }
  EXPECT_GT(lossless, 50U);
}

TEST_P(RandomTree, DoesNotDifferFromACopy) {
  for (unsigned seed = 0; seed < kTrees; ++seed) {
    MenuTree tree;
    TreeMaker(seed, false).fill(tree);
    const auto bytes = written(tree, GetParam());
    EXPECT_EQ(diffOf(bytes, bytes).out, "") << seed;
    // The same tree in bytes that are not the same.
    auto trailing = bytes;
    trailing.push_back(0);
    const VerbResult result = diffOf(bytes, trailing);
    EXPECT_EQ(result.out, "") << seed;
    EXPECT_EQ(result.status, 0) << seed;
  }
}

TEST(RandomTree, DiffersBetweenLayoutsOnlyByWhatSharingChanged) {
  for (unsigned seed = 0; seed < kTrees; ++seed) {
    MenuTree tree;
    TreeMaker(seed, false).fill(tree);
    const VerbResult result = diffOf(written(tree, Layout::kOneTable),
                                     written(tree, Layout::kTwoTable), Format::kJsonLines);
    std::istringstream lines(result.out);
    std::string line;
    while (std::getline(lines, line)) {
      const auto difference = nlohmann::json::parse(line);
      if (difference["type"] != "difference") continue;
      EXPECT_EQ(difference["change"], "changed") << seed << line;
      EXPECT_EQ(difference["shared"], true) << seed << line;
    }
  }
}

}  // namespace
}  // namespace Orvane
