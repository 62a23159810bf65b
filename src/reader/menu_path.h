#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "reader/inventory_view.h"

namespace Orvane {

// Writes where a record stands in the menu: "/" is the root, "/Artists/AC\/DC" a menu two levels
// down, "/.../A/B" one that is more than kMaxNames deep, of which the last names are kept. Names
// are escaped as by appendEscaped with "/". The start record of a walk that is not the root, and a
// record that the walk has not come to, show as "?" with the names below it; so does a name that
// the file does not hold.
class MenuPath {
 public:
  static constexpr std::size_t kMaxNames = 64;

  // `parents` as of a TreeWalk over `view`; both are borrowed.
  MenuPath(const InventoryView& view, std::span<const std::uint32_t> parents)
      : view_(view), parents_(parents) {}

  std::string of(std::uint32_t record) const;

 private:
  const InventoryView view_;
  std::span<const std::uint32_t> parents_;
};

}  // namespace Orvane
