#pragma once

#include "skein/finding_printer.h"
#include "skein/inventory_job.h"

namespace Orvane {

inline constexpr std::string_view kCheckSchema = "skein-check/1";

// Prints every finding about the inventory; nothing about a sound one, unless verbose. Returns
// kStatusNo if any finding is an error, else kStatusYes.
int checkInventory(const InventoryJob& job, const FindingPrinter::Options& options);

}  // namespace Orvane
