// Values in pieces that no parser makes, but the library's other functions do.
#include "inventory/xml_attribute.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "allocation_probe.h"
#include "tree/menu_node.h"

namespace Orvane::test {
namespace {

const xmlChar* x(const char* text) {
  return reinterpret_cast<const xmlChar*>(text);
}

class XmlAttributePieces : public ::testing::Test {
 protected:
  XmlAttributePieces() { xmlDocSetRootElement(document_.get(), element_); }

  // The attribute "name", without any value yet.
  xmlAttr* attribute() { return xmlNewProp(element_, x("name"), nullptr); }

  // Appends a piece as it is: the library would merge neighbouring texts.
  static void append(xmlAttr& attribute, xmlNode* piece) {
    piece->parent = reinterpret_cast<xmlNode*>(&attribute);
    piece->prev = attribute.last;
    (attribute.last == nullptr ? attribute.children : attribute.last->next) = piece;
    attribute.last = piece;
  }

  xmlNode* text(const char* content) { return xmlNewDocText(document_.get(), x(content)); }
  xmlNode* cdata(const std::string& content) {
    return xmlNewCDataBlock(document_.get(), x(content.c_str()), static_cast<int>(content.size()));
  }
  xmlNode* reference(const char* name) { return xmlNewReference(document_.get(), x(name)); }

  std::string value() const {
    XmlSharedTexts shared;
    const XmlAttribute attribute(*element_, "name", XmlTextUse::kName, shared);
    return attribute.isPresent() ? attribute.text() : "(absent)";
  }

  struct Free {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
  };
  const std::unique_ptr<xmlDoc, Free> document_{xmlNewDoc(x("1.0"))};
  xmlNode* const element_ = xmlNewDocNode(document_.get(), nullptr, x("media"), nullptr);
};

TEST_F(XmlAttributePieces, NoneIsEmpty) {
  EXPECT_EQ(value(), "(absent)");
  attribute();
  EXPECT_EQ(value(), "");
}

TEST_F(XmlAttributePieces, TextWithoutContentIsEmpty) {
  append(*attribute(), xmlNewDocText(document_.get(), nullptr));
  EXPECT_EQ(value(), "");
}

TEST_F(XmlAttributePieces, TextAloneIsNotCopied) {
  append(*attribute(), text("longer than what a string has room for in itself"));
  XmlSharedTexts shared;
  const LimitedAllocations none(0);
  const XmlAttribute attribute(*element_, "name", XmlTextUse::kName, shared);
  EXPECT_STREQ(attribute.text(), "longer than what a string has room for in itself");
}

TEST_F(XmlAttributePieces, WhatIsLongerThanANameIsNotTakenWhole) {
  append(*attribute(), cdata(std::string(1000, 'x')));
  EXPECT_EQ(value(), std::string(MenuNode::kMaxNameLength + 1, 'x'));
}

TEST_F(XmlAttributePieces, CdataIsText) {
  xmlAttr* const name = attribute();
  append(*name, cdata("one"));
  EXPECT_EQ(value(), "one");
  append(*name, text(" two"));
  append(*name, cdata(" three"));
  EXPECT_EQ(value(), "one two three");
}

TEST_F(XmlAttributePieces, OtherPiecesAreSkipped) {
  xmlAttr* const name = attribute();
  append(*name, text("a"));
  append(*name, xmlNewDocComment(document_.get(), x("not this")));
  append(*name, text("b"));
  EXPECT_EQ(value(), "ab");
}

TEST_F(XmlAttributePieces, UnknownEntityHasNoText) {
  xmlAttr* const name = attribute();
  append(*name, text("a"));
  append(*name, reference("unknown"));
  append(*name, text("b"));
  EXPECT_EQ(value(), "ab");
}

TEST_F(XmlAttributePieces, EntityIsNotEnteredFromWithinItself) {
  xmlCreateIntSubset(document_.get(), x("inventory"), nullptr, nullptr);
  xmlEntity* const entity = xmlAddDocEntity(document_.get(), x("loop"), XML_INTERNAL_GENERAL_ENTITY,
                                            nullptr, nullptr, x("(&loop;)"));
  ASSERT_NE(entity, nullptr);
  xmlNode* const pieces[] = {text("("), reference("loop"), text(")")};
  entity->children = pieces[0];
  entity->owner = 1;
  for (int i = 0; i < 2; ++i) {
    pieces[i]->next = pieces[i + 1];
    pieces[i + 1]->prev = pieces[i];
  }
  entity->last = pieces[2];
  for (xmlNode* const piece : pieces) piece->parent = reinterpret_cast<xmlNode*>(entity);

  xmlAttr* const name = attribute();
  append(*name, reference("loop"));
  append(*name, reference("loop"));
  EXPECT_EQ(value(), "()()");
}

}  // namespace
}  // namespace Orvane::test
