#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>

#include "test_support.h"
#include "tree/menu_tree.h"

namespace Orvane::test {
namespace {

constexpr const char* kEmptyBlock =
    "------------> start a new node <------------\n"
    "------------> end node <--------------------\n";

std::string dumpOf(const MenuNode* node) {
  const CapturedStream output(std::cout);
  MenuTree::dumpTree(node);
  return output.text();
}

TEST(DumpTree, OfNullIsNothing) {
  EXPECT_EQ(dumpOf(nullptr), "");
}

TEST(DumpTree, OfANodeWithoutChildrenIsAnEmptyBlock) {
  const MenuTree tree;
  EXPECT_EQ(dumpOf(tree.getRoot()), kEmptyBlock);
}

TEST(DumpTree, ShowsABlockAMenuDepthFirst) {
  MenuTree tree;
  MenuNode& first = addMenu(*tree.getRoot(), 5, "First");
  addMedia(*tree.getRoot(), 4294967295, "Song");
  MenuNode& star = addNode(*tree.getRoot(), 0, 0, "Star");
  MenuNode& inner = addMenu(first, 2147483648, "Inner");
  addMedia(first, 7, "");
  addMedia(inner, 8, "Deep");
  addMedia(star, 9, "Shiny");
  EXPECT_EQ(dumpOf(tree.getRoot()),
            "------------> start a new node <------------\n"
            "First | MediaID :> 5\n"
            "Song | MediaID :> -1\n"
            "Star | MediaID :> 0\n"
            "------------> end node <--------------------\n"
            "------------> start a new node <------------\n"
            "Inner | MediaID :> -2147483648\n"
            " | MediaID :> 7\n"
            "------------> end node <--------------------\n"
            "------------> start a new node <------------\n"
            "Deep | MediaID :> 8\n"
            "------------> end node <--------------------\n"
            "------------> start a new node <------------\n"
            "Shiny | MediaID :> 9\n"
            "------------> end node <--------------------\n");
}

TEST(DumpTree, LeavesOutWhatIsBeneathMedia) {
  MenuTree tree;
  addMedia(addMedia(*tree.getRoot(), 1, "Media"), 2, "Beneath");
  EXPECT_EQ(dumpOf(tree.getRoot()),
            "------------> start a new node <------------\n"
            "Media | MediaID :> 1\n"
            "------------> end node <--------------------\n");
}

class FindNodeTrace : public ::testing::Test {
 protected:
  FindNodeTrace() {
    MenuNode& root = *tree_.getRoot();
    first_ = &addMenu(root, 1, "First");
    second_ = &addMenu(root, 2, "Second");
    inner_ = &addMenu(*first_, 3, "Inner");
    deep_ = &addMedia(*inner_, 4294967295, "Deep");
    other_ = &addMedia(*second_, 5, "Other");
  }

  // Looks for a node like the given one; `output_` is what was said meanwhile.
  const MenuNode* find(std::uint32_t mediaId, std::string_view name, std::uint32_t recType) {
    MenuNode target;
    target.setAll(77, mediaId, name, recType, 78, 79);
    const CapturedStream output(std::cout);
    const MenuNode* const found = MenuTree::findNodeTrace(tree_.getRoot(), target);
    output_ = output.text();
    return found;
  }

  MenuTree tree_;
  MenuNode* first_ = nullptr;
  MenuNode* second_ = nullptr;
  MenuNode* inner_ = nullptr;
  MenuNode* deep_ = nullptr;
  MenuNode* other_ = nullptr;
  std::string output_;
};

constexpr const char* kAllNames =
    "\nwhat (*itr) have : First\n"
    "\nwhat (*itr) have : Second\n"
    "\nwhat (*itr) have : Inner\n"
    "\nwhat (*itr) have : Deep\n"
    "\nwhat (*itr) have : Other\n";

TEST_F(FindNodeTrace, OfNullFindsNothing) {
  const CapturedStream output(std::cout);
  EXPECT_EQ(MenuTree::findNodeTrace(nullptr, *first_), nullptr);
  EXPECT_EQ(output.text(), "");
}

TEST_F(FindNodeTrace, TriesChildrenBeforeGrandchildren) {
  EXPECT_EQ(find(2, "Second", 7), second_);
  EXPECT_EQ(output_,
            "\nwhat (*itr) have : First\n"
            "\nwhat (*itr) have : Second\n"
            "\nwhat (t = *itr) have : Second+ID= 2\n"
            "--\nFOUND||\n");
}

TEST_F(FindNodeTrace, GoesDepthFirstAfterThat) {
  EXPECT_EQ(find(4294967295, "Deep", 0), deep_);
  EXPECT_EQ(output_,
            "\nwhat (*itr) have : First\n"
            "\nwhat (*itr) have : Second\n"
            "\nwhat (*itr) have : Inner\n"
            "\nwhat (*itr) have : Deep\n"
            "\nwhat (t = *itr) have : Deep+ID= -1\n"
            "--\nFOUND||\n");
}

TEST_F(FindNodeTrace, FindsTheLastNode) {
  EXPECT_EQ(find(5, "Other", 0), other_);
  EXPECT_EQ(output_,
            std::string(kAllNames) + "\nwhat (t = *itr) have : Other+ID= 5\n--\nFOUND||\n");
}

TEST_F(FindNodeTrace, NeedsNameRecTypeAndId) {
  EXPECT_EQ(find(6, "Other", 0), nullptr);
  EXPECT_EQ(output_, kAllNames);
  EXPECT_EQ(find(5, "other", 0), nullptr);
  EXPECT_EQ(output_, kAllNames);
  EXPECT_EQ(find(5, "Other", 7), nullptr);
  EXPECT_EQ(output_, kAllNames);
}

TEST_F(FindNodeTrace, LeavesTheNodeItselfOut) {
  EXPECT_EQ(find(0, "root", 7), nullptr);
  EXPECT_EQ(output_, kAllNames);
}

TEST_F(FindNodeTrace, LooksBeneathMedia) {
  MenuNode& beneath = addMedia(*other_, 6, "Beneath");
  EXPECT_EQ(find(6, "Beneath", 0), &beneath);
}

TEST_F(FindNodeTrace, ReturnsTheFirstOfSeveral) {
  addMedia(*second_, 5, "Other");
  EXPECT_EQ(find(5, "Other", 0), other_);
}

}  // namespace
}  // namespace Orvane::test
