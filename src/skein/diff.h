#pragma once

#include "reader/inventory_view.h"
#include "skein/inventory_job.h"

namespace Orvane {

inline constexpr std::string_view kDiffSchema = "skein-diff/1";

struct DiffOptions {
  bool statOnly = false;  // numbers instead of the differences
};

struct NamedInventory {
  const InventoryView& view;
  std::string_view file;
};

// Prints the differences between two inventories. Returns kStatusYes if there are none. Otherwise,
// and if one of them is damaged so that it was compared in part, kStatusNo; inventories of the same
// bytes have no difference whatever their state.
int diffInventories(const NamedInventory& first, const NamedInventory& second,
                    const DiffOptions& options, Printing& printing);

}  // namespace Orvane
