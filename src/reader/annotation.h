// Explains each byte of an inventory, once and in order.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reader/inventory_view.h"
#include "reader/menu_path.h"
#include "reader/tree_index.h"

namespace Orvane {

// A run of bytes with one meaning.
struct AnnotatedField {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;  // bytes; never 0
  std::string_view name;   // of the field
  std::string value;       // decoded, with what an index points to; may be empty
  bool zeroFill = false;   // all bytes are zero and mean nothing by themselves
};

class AnnotationSink {
 public:
  virtual ~AnnotationSink() = default;
  // What the fields up to the next call belong to, such as "tree record 1 (/Albums)".
  virtual void section(const std::string& title) = 0;
  virtual void field(const AnnotatedField& field) = 0;
};

// Goes through the bytes of an inventory in order. The fields that it hands out cover the file
// without gaps and overlaps, whatever the file says of itself: what belongs to no readable record
// is a field named "bytes". Uses four bytes per data record, besides the index.
class Annotation {
 public:
  // Borrows all of its arguments.
  Annotation(const TreeIndex& index, AnnotationSink& sink);

  void run();

 private:
  void header();
  void descriptor(std::size_t table);
  void tables();
  void table(std::size_t which);
  void record(std::uint32_t record);
  void item(std::uint64_t offset, ItemView item);
  // Everything up to `offset` that has not been explained.
  void unexplained(std::uint64_t offset);
  void field(std::size_t size, std::string_view name, std::string value = {});
  std::string firstChildValue(std::uint32_t record, const RecordLinks& links) const;
  std::string named(std::string_view noun, std::uint32_t index, ItemView item) const;

  const TreeIndex& index_;
  const InventoryView& view_;
  const MenuPath path_;
  AnnotationSink& sink_;
  std::vector<std::uint32_t> firstUser_;  // of each data record, kNoRecord if it has none
  std::uint64_t at_ = 0;                  // offset of the first byte not yet explained
};

}  // namespace Orvane
