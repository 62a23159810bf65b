// Mutates XML documents by whole elements, attributes and declarations, so that most of them stay
// well-formed.
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "mutator.h"

namespace {

using Orvane::fuzz::Dice;
using Tokens = std::vector<std::string>;

// Where the tag, comment or declaration that `text` begins with ends. The head of a document type
// goes up to the [ of its declarations.
std::size_t markupLength(std::string_view text) {
  char quote = '\0';
  for (std::size_t i = 1; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '>' || (c == '[' && text[1] == '!')) {
      return i + 1;
    }
  }
  return text.size();
}

// Markup and what is between, in turn and as it is.
Tokens tokensOf(std::string_view text) {
  Tokens tokens;
  while (!text.empty()) {
    const std::size_t length =
        text.front() == '<' ? markupLength(text) : std::min(text.find('<'), text.size());
    tokens.emplace_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return tokens;
}

bool isTag(const std::string& token) {
  return token.size() > 2 && token[0] == '<' && token[1] != '!' && token[1] != '?';
}
bool isClosing(const std::string& token) {
  return isTag(token) && token[1] == '/';
}
bool isEmptyTag(const std::string& token) {
  return isTag(token) && token[token.size() - 2] == '/';
}
bool isOpening(const std::string& token) {
  return isTag(token) && !isClosing(token);
}

// One past the end of the element that begins at `begin`.
std::size_t endOfElement(const Tokens& tokens, std::size_t begin) {
  std::size_t depth = 0;
  for (std::size_t i = begin; i < tokens.size(); ++i) {
    if (isOpening(tokens[i]) && !isEmptyTag(tokens[i])) ++depth;
    if (isClosing(tokens[i]) && depth != 0) --depth;
    if (depth == 0) return i + 1;
  }
  return tokens.size();
}

std::string joined(const Tokens& tokens, std::size_t begin, std::size_t end) {
  std::string text;
  for (std::size_t i = begin; i < end; ++i) text += tokens[i];
  return text;
}

// The first attribute after a place by chance: blank, name, = and quoted value.
std::string someAttribute(const std::string& tag, Dice& dice) {
  const std::size_t from = tag.find(' ', dice.below(tag.size()));
  if (from == std::string::npos) return " name='&e;'";
  const std::size_t open = tag.find_first_of("'\"", from);
  const std::size_t close = open == std::string::npos ? open : tag.find(tag[open], open + 1);
  return close == std::string::npos ? " rectype='3'" : tag.substr(from, close - from + 1);
}

void changeTag(std::string& tag, const std::string& other, Dice& dice) {
  const std::size_t end = tag.size() - (isEmptyTag(tag) ? 2 : 1);
  const std::string attribute = someAttribute(tag, dice);
  const std::size_t at = tag.find(attribute);
  switch (dice.below(3)) {
    case 0:
      tag.insert(end, someAttribute(other, dice));
      return;
    case 1:
      if (at != std::string::npos) tag.erase(at, attribute.size());
      return;
    default: {
      static const std::array<const char*, 8> kValues = {"&e;",  "&f;&e;", "-1", "4294967295",
                                                         "&#9;", " 12x",   "é",  "&amp;"};
      const std::size_t quote = tag.find_first_of("'\"");
      if (quote != std::string::npos) tag.insert(quote + 1, dice.oneOf(kValues));
    }
  }
}

// Declares an entity with what may be an element of the document, before the first that is there.
void declare(Tokens& tokens, const std::string& value, Dice& dice) {
  if (value.find('"') != std::string::npos) return;
  const std::string entity =
      std::string("<!ENTITY ") + (dice.oneIn(2) ? "e" : "f") + " \"" + value + "\">";
  for (std::string& token : tokens) {
    if (token.rfind("<!DOCTYPE", 0) == 0 && token.back() == '[') {
      token += entity;
      return;
    }
  }
  const std::size_t place = !tokens.empty() && tokens.front().rfind("<?xml", 0) == 0 ? 1 : 0;
  tokens.insert(tokens.begin() + static_cast<long>(place), "<!DOCTYPE r [" + entity + "]>");
}

std::string change(std::string_view text, Dice& dice) {
  static const std::array<const char*, 9> kContents = {
      "&e;", "&f;", "x", " ", "<!--c-->", "<?p q?>", "<![CDATA[x]]>", "<media name='n'/>", "<m/>"};
  Tokens tokens = tokensOf(text);
  std::vector<std::size_t> openings;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (isOpening(tokens[i])) openings.push_back(i);
  }
  if (openings.empty()) return std::string(text);

  const std::size_t begin = dice.oneOf(openings);
  const std::size_t end = endOfElement(tokens, begin);
  const std::string element = joined(tokens, begin, end);
  // Within the root element, if there is any place.
  const std::size_t root = openings.front();
  const std::size_t place = root + 1 + dice.below(tokens.size() - root);
  const auto insert = [&](const std::string& what) {
    tokens.insert(tokens.begin() + static_cast<long>(std::min(place, tokens.size())), what);
  };
  switch (dice.below(8)) {
    case 0:
      insert(element);
      break;
    case 1:
      if (begin != root) {
        tokens.erase(tokens.begin() + static_cast<long>(begin),
                     tokens.begin() + static_cast<long>(end));
      }
      break;
    case 2:
      tokens[begin].insert(0, "<m name='w'>");
      tokens[end - 1] += "</m>";
      break;
    case 3:
      declare(tokens, dice.oneIn(2) ? element : dice.oneOf(kContents), dice);
      break;
    case 4:
    case 5:
      insert(dice.oneOf(kContents));
      break;
    default:
      changeTag(tokens[begin], tokens[dice.oneOf(openings)], dice);
  }
  return joined(tokens, 0, tokens.size());
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t limit, unsigned seed) {
  return Orvane::fuzz::mutateText(data, size, limit, seed, change);
}
