#include "skein/decompile.h"

#include <algorithm>
#include <optional>
#include <string>

#include "reader/inventory_check.h"
#include "reader/text_escape.h"
#include "reader/writer_order.h"
#include "skein/exit_status.h"
#include "skein/finding_printer.h"
#include "skein/xml_menu_writer.h"
#include "tree/menu_node.h"

namespace Orvane {
namespace {

// The XML reader takes no deeper elements than this, the document's root element being at 1.
constexpr std::uint32_t kMaxElementDepth = 257;
// Child counts without stored children are carried by empty elements, which a count of billions
// would make a file without end.
constexpr std::uint64_t kMaxFillers = 1000000;

// Names what an XML menu tree cannot say.
class Losses {
 public:
  Losses(const InventoryJob& job, const MenuPath& path) : job_(job), path_(path) {}

  // How many losses are printed; the rest are only counted.
  void setLimit(std::uint64_t limit) { limit_ = limit; }

  void add(std::string_view rule, std::uint32_t record, const std::string& message) {
    if (++count_ > limit_) return;
    OutputBuffer& out = job_.printing.out;
    out.put(escaped(job_.file));
    out.put(":0x");
    out.hex(job_.view.recordOffset(record), 1);
    out.put(": record ");
    out.number(record);
    out.put(" (");
    out.put(path_.of(record));
    out.put("): ");
    out.put(job_.printing.style.begin(Ink::kError));
    out.put("error:");
    out.put(job_.printing.style.end());
    out.put(' ');
    out.put(message);
    out.put(" [");
    out.put(rule);
    out.put("]\n");
  }

  std::uint64_t count() const { return count_; }
  std::uint64_t omitted() const { return count_ - std::min(count_, limit_); }

 private:
  const InventoryJob& job_;
  const MenuPath& path_;
  std::uint64_t limit_ = 0;
  std::uint64_t count_ = 0;
};

class Decompiler {
 public:
  Decompiler(const InventoryJob& job, const DecompileOptions& options, OutputBuffer& xml)
      : job_(job),
        view_(job.view),
        walk_(view_),
        path_(view_, walk_.parents()),
        losses_(job, path_),
        out_(xml),
        xml_(xml) {
    checkFile(options.limit);
  }

  bool run() {
    if (!damaged_) order_.emplace(view_);
    for (auto event = walk_.next(); event != TreeWalk::Event::kEnd; event = walk_.next()) {
      if (event == TreeWalk::Event::kLeave) {
        xml_.endElement();
      } else {
        enter(walk_.current());
      }
      if (out_.failed()) break;
    }
    if (view_.recordCount() == 0) {
      xml_.startElement("inventory");
      xml_.endElement();
    }
    xml_.finish();
    if (order_ && order_->departure()) {
      losses_.add("not-canonical", order_->departure()->record, order_->departure()->message);
    }
    printOmitted(job_, omittedFindings_ + losses_.omitted());
    return !damaged_ && losses_.count() == 0;
  }

 private:
  // Damage means other bytes; so do bytes behind a name's terminator, while the encoding of names
  // is judged by what XML can hold.
  void checkFile(std::uint64_t limit) {
    TreeWalk walk(view_);
    const MenuPath path(view_, walk.parents());
    FindingPrinter::Options options;
    options.limit = limit;
    options.settings.apply("error=name-tail");
    options.settings.apply("no-name-utf8");
    FindingPrinter printer(job_, path, options);
    InventoryCheck check(view_, printer);
    check.run(walk);
    damaged_ = printer.errors() != 0;
    omittedFindings_ = printer.omitted();
    losses_.setLimit(limit - printer.printed());
  }

  void enter(const TreeWalk::Visit& visit) {
    const ItemView item = view_.item(visit.links.dataIndex);
    if (visit.record == 0) {
      startRoot(visit, item);
    } else if (visit.links.isLeaf() || needsMedia(visit, item)) {
      startMedia(item);
    } else {
      startMenu(visit, item);
    }
    const bool hidden = visit.links.isLeaf() || visit.displaced;
    const bool filled = hidden && visit.links.childCount != 0 && visit.record != 0;
    if (filled) fill(visit);
    // The root's element is at depth 1, and so on; the empty elements are one deeper.
    const std::uint32_t elementDepth = visit.depth + 1;
    if (elementDepth == kMaxElementDepth + 1 || (filled && elementDepth == kMaxElementDepth)) {
      losses_.add("too-deep", visit.record,
                  "XML elements may be nested " + std::to_string(kMaxElementDepth) +
                      " deep, which is not enough here");
    }
    if (visit.used == 0) xml_.endElement();
  }

  // An earlier "Playlists" sibling is linked like that whatever it is, and only a media element can
  // bring an id or a rating.
  bool needsMedia(const TreeWalk::Visit& visit, ItemView item) const {
    return visit.links.firstChildIndex == 0 && (item.mediaId() != 0 || item.rating() != 0) &&
           walk_.hasLaterPlaylists(visit.record);
  }

  void startRoot(const TreeWalk::Visit& visit, ItemView item) {
    xml_.startElement("inventory");
    name(visit, item);
    if (visit.links.isLeaf()) losses_.add("root-leaf", 0, "the root is a media leaf");
    if (!item) return;
    const auto expect = [this](std::string_view field, std::uint32_t value, std::uint32_t fixed) {
      if (value == fixed) return;
      losses_.add("root-field", 0,
                  "the root's " + std::string(field) + " is " + std::to_string(value) +
                      ", which is always " + std::to_string(fixed) + " in a file made from XML");
    };
    expect("mediaId", item.mediaId(), 0);
    expect("recType", item.recType(), RecType::kPlainMenu);
    expect("rating", item.rating(), 0);
    expect("attribMask", item.attribMask(), 0);
  }

  void startMedia(ItemView item) {
    xml_.startElement("media");
    name(walk_.current(), item);
    if (item.mediaId() != 0) xml_.numberAttribute("mediaid", item.mediaId());
    if (item.rating() != 0) xml_.numberAttribute("rating", item.rating());
    if (item.attribMask() != 0) xml_.numberAttribute("attribmask", item.attribMask());
  }

  void startMenu(const TreeWalk::Visit& visit, ItemView item) {
    const bool partition = item.attribMask() != 0;
    xml_.startElement(partition ? "partition" : "menu");
    name(visit, item);
    if (partition) xml_.numberAttribute("partitionid", item.attribMask());
    if (item.mediaId() != 0) {
      losses_.add("menu-id", visit.record,
                  "a menu's id, here " + std::to_string(item.mediaId()) + ", has no place in XML");
    }
    // A menu that shares the record of a media leaf shows that leaf's rating again by itself.
    if (item.rating() != 0 && (!order_ || order_->ownsItem(visit.record))) {
      losses_.add(
          "menu-rating", visit.record,
          "a menu's rating, here " + std::to_string(item.rating()) + ", has no place in XML");
    }
  }

  // The name and, with it, what every element below the root has.
  void name(const TreeWalk::Visit& visit, ItemView item) {
    const std::string_view text = item.name();
    if (!XmlMenuWriter::canHold(text)) {
      losses_.add("xml-name", visit.record, "the name is no legal XML text");
    }
    xml_.nameAttribute(text);
    if (visit.record != 0 && item.recType() != RecType::kPlainMenu) {
      xml_.numberAttribute("rectype", item.recType());
    }
  }

  // Elements that are counted as children and never written to a file.
  void fill(const TreeWalk::Visit& visit) {
    std::uint64_t count = visit.links.childCount;
    if (fillers_ + count > kMaxFillers) {
      losses_.add("child-count", visit.record,
                  "a count of " + std::to_string(count) +
                      (count == 1 ? " child that is" : " children that are") +
                      " not stored needs more than " + std::to_string(kMaxFillers) +
                      " empty elements");
      return;
    }
    fillers_ += count;
    for (; count > 0; --count) {
      xml_.startElement("menu");
      xml_.endElement();
    }
  }

  const InventoryJob& job_;
  const InventoryView& view_;
  TreeWalk walk_;
  const MenuPath path_;
  Losses losses_;
  OutputBuffer& out_;
  XmlMenuWriter xml_;
  std::optional<WriterOrder> order_;
  bool damaged_ = false;
  std::uint64_t omittedFindings_ = 0;
  std::uint64_t fillers_ = 0;
};

}  // namespace

int decompileInventory(const InventoryJob& job, const DecompileOptions& options,
                       OutputBuffer& xml) {
  return Decompiler(job, options, xml).run() ? kStatusYes : kStatusNo;
}

}  // namespace Orvane
