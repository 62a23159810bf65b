#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>

namespace Orvane {

// A start tag as libxml2's parser hands it on, good until that goes on.
class XmlStartTag {
 public:
  // The value of an attribute without a namespace prefix.
  class Attribute {
   public:
    Attribute() = default;
    Attribute(const xmlChar* begin, const xmlChar* end) : begin_(begin), end_(end) {}

    bool isPresent() const { return begin_ != nullptr; }
    std::string_view text() const {
      return {reinterpret_cast<const char*>(begin_), static_cast<std::size_t>(end_ - begin_)};
    }

    // As strtol reads it in base 10, the low 32 bits; `absent` when there is no attribute. What
    // follows a value is a quote or zero, at which a number ends.
    std::uint32_t numberOr(std::uint32_t absent) const {
      if (!isPresent()) return absent;
      return static_cast<std::uint32_t>(std::strtol(text().data(), nullptr, 10));
    }

   private:
    const xmlChar* begin_ = nullptr;
    const xmlChar* end_ = nullptr;
  };

  // Of the arguments of libxml2's startElementNs those that matter here. (A prefix that isn't
  // declared would be part of the name, but the document is refused for it.)
  XmlStartTag(const xmlChar* name, int namespaceCount, int attributeCount,
              const xmlChar** attributes)
      : name_(name),
        declaresNamespaces_(namespaceCount > 0),
        attributes_(attributes, kFields * static_cast<std::size_t>(attributeCount)) {}

  // Whether the document can do without the element, and all values stand here as they are:
  // namespaces are looked up in the document, an xml:id has to be the only one like it, and an
  // ampersand is still a reference.
  bool isPlain() const {
    if (declaresNamespaces_) return false;
    for (std::size_t i = 0; i < attributes_.size(); i += kFields) {
      const bool isXml = attributes_[i + kPrefix] != nullptr && is(attributes_[i + kPrefix], "xml");
      if (isXml && is(attributes_[i], "id")) return false;
      if (at(i).text().find('&') != std::string_view::npos) return false;
    }
    return true;
  }

  bool isNamed(const char* name) const { return is(name_, name); }

  Attribute attribute(const char* name) const {
    for (std::size_t i = 0; i < attributes_.size(); i += kFields) {
      if (attributes_[i + kPrefix] == nullptr && is(attributes_[i], name)) return at(i);
    }
    return {};
  }

 private:
  // Of an attribute: name, prefix, namespace, begin and end of the value.
  static constexpr std::size_t kPrefix = 1;
  static constexpr std::size_t kBegin = 3;
  static constexpr std::size_t kEnd = 4;
  static constexpr std::size_t kFields = 5;

  static bool is(const xmlChar* name, const char* wanted) {
    return std::strcmp(reinterpret_cast<const char*>(name), wanted) == 0;
  }
  Attribute at(std::size_t i) const { return {attributes_[i + kBegin], attributes_[i + kEnd]}; }

  const xmlChar* name_;
  bool declaresNamespaces_;
  std::span<const xmlChar*> attributes_;
};

}  // namespace Orvane
