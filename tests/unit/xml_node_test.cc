#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <cstddef>
#include <memory>
#include <string_view>

#include "inventory/xml_reader.h"
#include "test_support.h"

namespace Orvane::test {
namespace {

// White space between elements gets no node, a comment does.
TEST(XmlNode, HangsAnElementWithAllBeneathItUnderAParent) {
  constexpr std::string_view kText =
      "<inventory><menu name='m'> <media name='a' mediaid='1'/>"
      "<!-- c --></menu><menu name='beside'/></inventory>";
  const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
      xmlReadMemory(kText.data(), static_cast<int>(kText.size()), nullptr, nullptr, 0), xmlFreeDoc);
  ASSERT_NE(document, nullptr);
  MenuTree tree;
  addMedia(*tree.getRoot(), 9, "before");
  addXmlNode(*xmlDocGetRootElement(document.get())->children, *tree.getRoot());

  ASSERT_EQ(tree.getRoot()->childCount(), 2U);
  const MenuNode& menu = *tree.getRoot()->childrenBegin()[1];
  EXPECT_EQ(menu.getName(), "m");
  ASSERT_EQ(menu.childCount(), 2U);
  EXPECT_EQ(menu.childrenBegin()[0]->getMediaId(), 1U);
  EXPECT_EQ(menu.childrenBegin()[1]->getName(), "");
}

}  // namespace
}  // namespace Orvane::test
