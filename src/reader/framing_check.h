#pragma once

#include "reader/finding.h"
#include "reader/inventory_view.h"

namespace Orvane {

// Checks what is around the records: header, descriptors, and that sizes, counts and offsets add up
// to the file. Reports in file order, the file's end last. Returns the number of findings.
std::uint64_t checkFraming(const InventoryView& view, FindingSink& sink);

}  // namespace Orvane
