#include "skein/xml_menu_writer.h"

#include <algorithm>
#include <new>

#include "reader/utf8.h"

namespace Orvane {
namespace {

// Deeper elements are not moved further to the right, or a deep tree would be mostly blanks.
constexpr std::uint32_t kMaxIndent = 32;

int writeToBuffer(void* context, const char* bytes, int length) {
  static_cast<OutputBuffer*>(context)->put({bytes, static_cast<std::size_t>(length)});
  return length;
}

// The text functions of the library count bytes of this type.
const xmlChar* xmlText(const char* text) {
  return static_cast<const xmlChar*>(static_cast<const void*>(text));
}

void require(int result) {
  if (result < 0) throw std::bad_alloc();
}

// Nor is 0, which stands for bytes that are no character.
bool isXmlChar(std::uint32_t c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c != 0xFFFE && c != 0xFFFF;
}

// Appends `name` as the value of an attribute. White space other than blanks would not survive a
// parser as it is; what XML cannot hold becomes U+FFFD.
void appendAttribute(std::string& out, std::string_view name) {
  while (!name.empty()) {
    const Utf8Char next = firstUtf8Char(name);
    switch (name.front()) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\t':
        out += "&#9;";
        break;
      case '\n':
        out += "&#10;";
        break;
      case '\r':
        out += "&#13;";
        break;
      default:
        if (isXmlChar(next.codePoint)) {
          out += name.substr(0, next.length);
        } else {
          out += "\xEF\xBF\xBD";
        }
    }
    name.remove_prefix(next.length);
  }
}

}  // namespace

XmlMenuWriter::XmlMenuWriter(OutputBuffer& out) {
  xmlOutputBufferPtr buffer = xmlOutputBufferCreateIO(writeToBuffer, nullptr, &out, nullptr);
  if (buffer == nullptr) throw std::bad_alloc();
  writer_.reset(xmlNewTextWriter(buffer));
  if (!writer_) {
    xmlOutputBufferClose(buffer);
    throw std::bad_alloc();
  }
  // Not as the start of a document with an encoding: the library would convert UTF-8 to UTF-8, and
  // drop all that it has no memory to convert without telling. The declaration ends its line, so
  // the first element needs no line break.
  constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  require(xmlTextWriterWriteRaw(writer_.get(), xmlText(kDeclaration)));
}

void XmlMenuWriter::breakLine() {
  text_.assign(1, '\n');
  text_.append(std::size_t{2} * std::min(depth_, kMaxIndent), ' ');
  require(xmlTextWriterWriteRaw(writer_.get(), xmlText(text_.c_str())));
}

void XmlMenuWriter::startElement(const char* tag) {
  if (depth_ != 0) breakLine();
  require(xmlTextWriterStartElement(writer_.get(), xmlText(tag)));
  ++depth_;
  hasChildren_ = false;
}

void XmlMenuWriter::nameAttribute(std::string_view name) {
  text_.clear();
  appendAttribute(text_, name);
  require(xmlTextWriterStartAttribute(writer_.get(), xmlText("name")));
  require(xmlTextWriterWriteRaw(writer_.get(), xmlText(text_.c_str())));
  require(xmlTextWriterEndAttribute(writer_.get()));
}

void XmlMenuWriter::numberAttribute(const char* attribute, std::uint32_t value) {
  const std::string text = std::to_string(value);
  require(xmlTextWriterWriteAttribute(writer_.get(), xmlText(attribute), xmlText(text.c_str())));
}

void XmlMenuWriter::endElement() {
  --depth_;
  if (hasChildren_) breakLine();
  require(xmlTextWriterEndElement(writer_.get()));
  hasChildren_ = true;
}

void XmlMenuWriter::finish() {
  require(xmlTextWriterEndDocument(writer_.get()));
  writer_.reset();
}

bool XmlMenuWriter::canHold(std::string_view name) {
  while (!name.empty()) {
    const Utf8Char next = firstUtf8Char(name);
    if (!isXmlChar(next.codePoint)) return false;
    name.remove_prefix(next.length);
  }
  return true;
}

}  // namespace Orvane
