#pragma once

#include "skein/inventory_job.h"

namespace Orvane {

// Prints what each byte of the inventory is, in order: offset, hex, field and decoded value, and
// below each field what is wrong with it. Returns kStatusNo if there was an error, else kStatusYes.
int annotateInventory(const InventoryJob& job);

}  // namespace Orvane
