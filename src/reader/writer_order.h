#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "reader/inventory_view.h"

namespace Orvane {

// Whether the records of an inventory stand where the writers put them. Players do not care, but
// only such a file can be made again from its menu tree.
class WriterOrder {
 public:
  // The first record that stands elsewhere, and what is the matter with it.
  struct Departure {
    std::uint32_t record;
    std::string message;
  };

  // To be asked only about an inventory in which a check finds nothing wrong. Borrows the view.
  explicit WriterOrder(const InventoryView& view);

  const std::optional<Departure>& departure() const { return departure_; }

  // True if the item that `record` shows is the one that it brought into the file; others that
  // share a data record show what the first of them brought.
  bool ownsItem(std::uint32_t record) const {
    return (owners_[record / 64] >> (record % 64) & 1) != 0;
  }

 private:
  void checkItems();
  void checkLinks();
  void checkDuplicates();
  void depart(std::uint32_t record, std::string message);

  const InventoryView& view_;
  std::vector<std::uint64_t> owners_;
  std::optional<Departure> departure_;
};

}  // namespace Orvane
