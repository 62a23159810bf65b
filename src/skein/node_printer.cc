#include "skein/node_printer.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "reader/node_kind.h"
#include "reader/text_escape.h"

namespace Orvane {
namespace {

constexpr std::uint32_t kMaxIndent = 40;

}  // namespace

std::string_view storedBytes(ItemView item) {
  const std::string_view name = item.name();
  const std::string_view field = item.nameField();
  // Nearly all fields are zero from the terminator on, which is quicker to see than where the last
  // other byte stands.
  static constexpr std::array<char, kNameFieldSize> kZeros{};
  const std::string_view rest = field.substr(name.size());
  if (std::memcmp(rest.data(), kZeros.data(), rest.size()) == 0) return name;
  return field.substr(0, field.find_last_not_of('\0') + 1);
}

void NodePrinter::indent(std::uint32_t depth) {
  job_.printing.out.fill(' ', std::size_t{2} * std::min(depth, kMaxIndent));
}

void NodePrinter::print(const TreeWalk::Visit& visit, std::uint32_t parent, std::uint32_t depth) {
  const ItemView item = job_.view.item(visit.links.dataIndex);
  if (job_.printing.format != Format::kText) {
    printJson(visit, item, parent, depth);
    return;
  }
  indent(depth);
  if (depth > kMaxIndent) {
    job_.printing.out.put("(depth ");
    job_.printing.out.number(depth);
    job_.printing.out.put(") ");
  }
  printText(visit, item);
}

void NodePrinter::printText(const TreeWalk::Visit& visit, ItemView item) {
  OutputBuffer& out = job_.printing.out;
  const Style& style = job_.printing.style;
  const bool leaf = visit.links.isLeaf();
  out.put(kindOf(leaf, item.recType()));
  out.put(" \"");
  out.put(style.begin(leaf ? Ink::kPlain : Ink::kBold));
  out.put(escaped(item.name(), "\""));
  out.put(style.end());
  out.put("\" #");
  out.number(visit.record);
  if (item.mediaId() != 0) {
    out.put(", id ");
    out.number(item.mediaId());
  }
  if (item && !isUsualRecType(leaf, item.recType())) {
    out.put(", type ");
    out.number(item.recType());
  }
  if (item.rating() != 0) {
    constexpr std::string_view kStars = "***";
    out.put(", rating ");
    out.number(item.rating());
    if (item.rating() <= kStars.size()) {
      out.put(' ');
      out.put(kStars.substr(0, item.rating()));
    }
  }
  if (item.attribMask() != 0) {
    out.put(", attributes 0x");
    out.hex(item.attribMask(), 4);
  }
  putCount(visit);
  out.put('\n');
}

void NodePrinter::putCount(const TreeWalk::Visit& visit) {
  const std::uint32_t count = visit.links.childCount;
  if (visit.links.isLeaf() && count == 0) return;
  OutputBuffer& out = job_.printing.out;
  out.put(", ");
  out.number(count);
  out.put(count == 1 ? " child" : " children");
  if (visit.links.isLeaf() || visit.displaced) out.put(" not stored");
}

// The one loop that prints millions of objects: keys are written together with what is around them.
void NodePrinter::printJson(const TreeWalk::Visit& visit, ItemView item, std::uint32_t parent,
                            std::uint32_t depth) {
  OutputBuffer& out = job_.printing.out;
  JsonWriter& json = job_.json;
  json.beginObject();
  json.field("type", "node");
  out.put(",\"record\":");
  out.number(visit.record);
  out.put(",\"parent\":");
  if (parent == kNoRecord) {
    out.put("null");
  } else {
    out.number(parent);
  }
  out.put(",\"depth\":");
  out.number(depth);
  out.put(",\"kind\":\"");
  out.put(kindOf(visit.links.isLeaf(), item.recType()));
  out.put('"');
  if (item) {
    json.nameField("name", item.name(), storedBytes(item));
    out.put(",\"mediaId\":");
    out.number(item.mediaId());
    out.put(",\"recType\":");
    out.number(item.recType());
    out.put(",\"rating\":");
    out.number(item.rating());
    out.put(",\"attribMask\":");
    out.number(item.attribMask());
  } else {
    out.put(",\"name\":null,\"mediaId\":null,\"recType\":null,\"rating\":null,\"attribMask\":null");
  }
  out.put(",\"dataRecord\":");
  out.number(visit.links.dataIndex);
  out.put(",\"children\":");
  out.number(visit.links.childCount);
  out.put(visit.used != 0 ? ",\"stored\":true" : ",\"stored\":false");
  json.endObject();
  if (job_.printing.format == Format::kJsonLines) json.endLine();
}

}  // namespace Orvane
