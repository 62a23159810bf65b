#include "inventory/xml_shared_texts.h"

#include <libxml/entities.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "tree/menu_node.h"

namespace Orvane {

namespace {

// A name of this length is too long, whatever follows. A number whose zeros and blanks are brought
// together is decided well before.
constexpr std::size_t kEnough = MenuNode::kMaxNameLength + 1;

// More zeros in a row change no number: before the other digits none counts, and behind one of them
// as many already lead out of any range.
constexpr std::string_view kManyZeros = "00000000000000000000";

const char* bytes(const xmlChar* text) {
  return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

bool isText(const xmlNode& piece) {
  return piece.type == XML_TEXT_NODE || piece.type == XML_CDATA_SECTION_NODE;
}

void append(std::string& text, const char* addition, XmlTextUse use) {
  for (; *addition != '\0' && text.size() < kEnough; ++addition) {
    char c = *addition;
    if (use == XmlTextUse::kNumber) {
      if (c >= '\t' && c <= '\r') c = ' ';
      if (c == ' ' && text.ends_with(' ')) continue;
      if (c == '0' && text.ends_with(kManyZeros)) continue;
    }
    text += c;
  }
}

}  // namespace

std::string XmlSharedTexts::joined(const xmlNode* piece, XmlTextUse use) {
  Texts& known = known_[static_cast<std::size_t>(use)];
  // An entity's pieces stand in its declaration. It is never entered from within itself.
  struct Open {
    const xmlEntity* entity;  // nullptr: the value itself
    const xmlNode* next;
    std::string text;
  };
  std::vector<Open> open{{nullptr, piece, {}}};
  while (true) {
    Open& inner = open.back();
    if (inner.next == nullptr || inner.text.size() >= kEnough) {
      const xmlEntity* const entity = inner.entity;
      std::string text = std::move(inner.text);
      if (entity == nullptr) return text;
      open.pop_back();
      append(open.back().text, text.c_str(), use);
      known.emplace(entity, std::move(text));
      continue;
    }
    const xmlNode& here = *inner.next;
    inner.next = here.next;
    if (isText(here)) {
      append(inner.text, bytes(here.content), use);
    } else if (here.type == XML_ENTITY_REF_NODE) {
      const xmlEntity* const entity = xmlGetDocEntity(here.doc, here.name);
      if (entity == nullptr) {
        append(inner.text, bytes(here.content), use);
      } else if (const auto found = known.find(entity); found != known.end()) {
        append(inner.text, found->second.c_str(), use);
      } else if (std::none_of(open.begin(), open.end(),
                              [&](const Open& outer) { return outer.entity == entity; })) {
        open.push_back({entity, entity->children, {}});
      }
    }
  }
}

const char* XmlSharedTexts::defaultOf(const xmlAttribute& declaration, XmlTextUse use) {
  const auto [found, isNew] = known_[static_cast<std::size_t>(use)].try_emplace(&declaration);
  if (isNew) append(found->second, bytes(declaration.defaultValue), use);
  return found->second.c_str();
}

}  // namespace Orvane
