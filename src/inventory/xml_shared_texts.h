#pragma once

#include <libxml/tree.h>

#include <array>
#include <string>
#include <unordered_map>

namespace Orvane {

// What an attribute's text is for. All that matters of a name is its beginning and whether it is
// longer than a node takes; all that matters of a number is what strtol reads.
enum class XmlTextUse { kName, kNumber };

// Gives the texts of attributes that are made of what the document declares once and may use any
// number of times: entities and default values. Each of these is gone through once, and none of the
// texts is longer than its use needs, so that neither time nor memory grows with the length of a
// declaration times the number of its uses.
class XmlSharedTexts {
 public:
  // The text of a value whose pieces begin with `piece`, as its use takes it: MenuNode::setName and
  // strtol make the same of it as of the whole text.
  std::string joined(const xmlNode* piece, XmlTextUse use);

  // The same of the default value in a declaration; good as long as this object.
  const char* defaultOf(const xmlAttribute& declaration, XmlTextUse use);

 private:
  using Texts = std::unordered_map<const void*, std::string>;  // by entity or declaration

  std::array<Texts, 2> known_;  // by use
};

}  // namespace Orvane
