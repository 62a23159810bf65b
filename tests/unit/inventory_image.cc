#include "inventory_image.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Orvane {

Sketch menu(std::string name, std::vector<Sketch> children) {
  Sketch sketch;
  sketch.name = std::move(name);
  sketch.children = std::move(children);
  return sketch;
}

Sketch media(std::string name, std::uint32_t mediaId, std::uint8_t rating,
             std::vector<Sketch> children) {
  Sketch sketch;
  sketch.name = std::move(name);
  sketch.leaf = true;
  sketch.mediaId = mediaId;
  sketch.recType = 0;
  sketch.rating = rating;
  sketch.children = std::move(children);
  return sketch;
}

Sketch sampleTree() {
  return menu("Home", {menu("Artists", {menu("Anna", {media("Song A", 1), media("Song B", 2)})}),
                       menu("Songs", {media("Song A", 1), media("Song B", 2), media("Song C", 3)}),
                       menu("Empty")});
}

// Depth first, each family of siblings together; with one recursion a level, sketches being small.
std::vector<InventoryImage::Row> InventoryImage::layOut(Layout layout, const Sketch& root) {
  std::vector<Row> rows = {{&root, 0}};
  const auto family = [&](const auto& self, std::size_t row) -> void {
    const Sketch& node = *rows[row].node;
    if (node.leaf) {
      rows[row].firstChild = kNoChildren;
      return;
    }
    const std::size_t base = rows.size();
    rows[row].firstChild = static_cast<std::uint32_t>(base);
    for (const Sketch& child : node.children) rows.push_back({&child, 0});
    std::size_t last = node.children.size();
    for (std::size_t i = 0; i < node.children.size(); ++i) {
      const Sketch& child = node.children[i];
      if (layout == Layout::kTwoTable && child.name == "Playlists" && child.recType == 7) {
        last = i;
      } else {
        self(self, base + i);
      }
    }
    if (last != node.children.size()) self(self, base + last);
  };
  family(family, 0);
  return rows;
}

InventoryImage::InventoryImage(Layout layout, const Sketch& root) : layout_(layout) {
  const std::vector<Row> rows = layOut(layout, root);
  recordCount_ = static_cast<std::uint32_t>(rows.size());
  const bool twoTable = layout == Layout::kTwoTable;
  put(0, 1);
  put(1, 1);
  put(0, 2);
  put(0, 4);
  put(twoTable ? 2 : 1, 4);
  put(16, 4);
  if (twoTable) {
    putDescriptor(1, 48, recordCount_, 12);
    putDescriptor(2, 48 + 12 * recordCount_, recordCount_, 72);
  } else {
    putDescriptor(3, 32, recordCount_, 80);
  }
  std::uint32_t number = 0;
  for (const Row& row : rows) {
    put(row.firstChild, 4);
    put(static_cast<std::uint32_t>(row.node->children.size()), 4);
    if (twoTable) {
      put(number++, 4);
    } else {
      putItem(*row.node);
    }
  }
  if (!twoTable) return;
  for (const Row& row : rows) putItem(*row.node);
}

void InventoryImage::put(std::uint32_t value, int width) {
  for (int i = 0; i < width; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void InventoryImage::putItem(const Sketch& node) {
  put(node.mediaId, 4);
  std::string field = node.name.substr(0, 64);
  field.resize(64);
  bytes_.insert(bytes_.end(), field.begin(), field.end());
  put(node.recType, 1);
  put(node.rating, 1);
  put(node.attribMask, 2);
}

void InventoryImage::putDescriptor(std::uint32_t kind, std::uint32_t offset, std::uint32_t count,
                                   std::uint32_t recordSize) {
  put(kind, 1);
  put(1, 1);
  put(0, 2);
  put(offset, 4);
  put(count, 4);
  put(recordSize, 4);
}

std::size_t InventoryImage::recordOffset(std::uint32_t record) const {
  return layout_ == Layout::kTwoTable ? 48 + std::size_t{12} * record
                                      : 32 + std::size_t{80} * record;
}

std::size_t InventoryImage::itemOffset(std::uint32_t item) const {
  return layout_ == Layout::kTwoTable ? 48 + std::size_t{12} * recordCount_ + std::size_t{72} * item
                                      : recordOffset(item) + 8;
}

InventoryImage& InventoryImage::firstChild(std::uint32_t record, std::uint32_t value) {
  return number(recordOffset(record), value);
}

InventoryImage& InventoryImage::childCount(std::uint32_t record, std::uint32_t value) {
  return number(recordOffset(record) + 4, value);
}

InventoryImage& InventoryImage::dataIndex(std::uint32_t record, std::uint32_t value) {
  if (layout_ != Layout::kTwoTable) throw std::logic_error("no data index in this layout");
  return number(recordOffset(record) + 8, value);
}

InventoryImage& InventoryImage::name(std::uint32_t item, std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    byte(itemOffset(item) + 4 + i, static_cast<std::uint8_t>(bytes[i]));
  }
  return *this;
}

InventoryImage& InventoryImage::byte(std::size_t offset, std::uint8_t value) {
  bytes_.at(offset) = value;
  return *this;
}

InventoryImage& InventoryImage::number(std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) {
    byte(offset + i, static_cast<std::uint8_t>(value >> (8 * i)));
  }
  return *this;
}

InventoryImage& InventoryImage::cutTo(std::size_t size) {
  bytes_.resize(std::min(size, bytes_.size()));
  return *this;
}

InventoryImage& InventoryImage::append(std::string_view bytes) {
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return *this;
}

InventoryImage& InventoryImage::addDataRecord() {
  putItem(menu("Nobody's"));
  return number(40, viewOf(*this).descriptor(1)->count + 1);
}

InventoryView viewOf(std::span<const std::uint8_t> bytes) {
  std::string reason;
  const auto view = InventoryView::open(bytes, reason);
  if (!view) throw std::runtime_error(reason);
  return *view;
}

}  // namespace Orvane
