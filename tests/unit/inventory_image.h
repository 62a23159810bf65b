#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "reader/inventory_view.h"

namespace Orvane {

// A menu tree in words, for tests: menu("Home", {menu("Albums", {media("Song", 5)})}).
struct Sketch {
  std::string name;
  bool leaf = false;
  std::uint32_t mediaId = 0;
  std::uint8_t recType = 7;
  std::uint8_t rating = 0;
  std::uint16_t attribMask = 0;
  std::vector<Sketch> children{};
};

Sketch menu(std::string name, std::vector<Sketch> children = {});
// A leaf of recType 0. Children of a leaf are counted and not stored.
Sketch media(std::string name, std::uint32_t mediaId, std::uint8_t rating = 0,
             std::vector<Sketch> children = {});

// The bytes of an inventory file, sound as made, for damaging one thing at a time. It is made
// without help of the code under test or of the writers, and shares no data records.
class InventoryImage {
 public:
  InventoryImage(Layout layout, const Sketch& root);

  std::span<const std::uint8_t> bytes() const { return bytes_; }
  std::size_t size() const { return bytes_.size(); }
  std::uint32_t recordCount() const { return recordCount_; }

  // Fields of records, by the record's number.
  InventoryImage& firstChild(std::uint32_t record, std::uint32_t value);
  InventoryImage& childCount(std::uint32_t record, std::uint32_t value);
  InventoryImage& dataIndex(std::uint32_t record, std::uint32_t value);
  // Puts `bytes` at the front of the name field of an item and leaves the rest of it.
  InventoryImage& name(std::uint32_t item, std::string_view bytes);

  // Any place, by its offset in bytes from the start of the file.
  InventoryImage& byte(std::size_t offset, std::uint8_t value);
  InventoryImage& number(std::size_t offset, std::uint32_t value);
  InventoryImage& cutTo(std::size_t size);
  InventoryImage& append(std::string_view bytes);
  // Adds a data record that nothing uses, and counts it.
  InventoryImage& addDataRecord();

  // Offsets in bytes from the start of the file.
  std::size_t recordOffset(std::uint32_t record) const;
  std::size_t itemOffset(std::uint32_t item) const;

 private:
  struct Row {
    const Sketch* node;
    std::uint32_t firstChild;
  };

  static std::vector<Row> layOut(Layout layout, const Sketch& root);
  void put(std::uint32_t value, int width);
  void putItem(const Sketch& node);
  void putDescriptor(std::uint32_t kind, std::uint32_t offset, std::uint32_t count,
                     std::uint32_t recordSize);

  Layout layout_;
  std::uint32_t recordCount_ = 0;
  std::vector<std::uint8_t> bytes_;
};

// Opens a view that must succeed.
InventoryView viewOf(std::span<const std::uint8_t> bytes);
inline InventoryView viewOf(const InventoryImage& image) {
  return viewOf(image.bytes());
}

// A few menus with media in them, among them one without children: eleven records.
Sketch sampleTree();

}  // namespace Orvane
