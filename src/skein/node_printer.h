#pragma once

#include <cstdint>

#include "reader/tree_walk.h"
#include "skein/inventory_job.h"

namespace Orvane {

// Prints one record: a line of text, or a JSON object.
class NodePrinter {
 public:
  explicit NodePrinter(const InventoryJob& job) : job_(job) {}

  // `depth` is that to be shown; `parent` is kNoRecord for a record without one.
  void print(const TreeWalk::Visit& visit, std::uint32_t parent, std::uint32_t depth);

  // The blanks before a line of text of that depth; from some depth on their number stays.
  void indent(std::uint32_t depth);

 private:
  void printText(const TreeWalk::Visit& visit, ItemView item);
  void printJson(const TreeWalk::Visit& visit, ItemView item, std::uint32_t parent,
                 std::uint32_t depth);
  void putCount(const TreeWalk::Visit& visit);

  const InventoryJob& job_;
};

// The bytes of a name field up to its zero fill.
std::string_view storedBytes(ItemView item);

}  // namespace Orvane
