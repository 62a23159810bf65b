#pragma once

#include "skein/inventory_job.h"

namespace Orvane {

inline constexpr std::string_view kStatsSchema = "skein-stats/1";

// Prints what the inventory holds: records by kind, depth, fan-out, the widest menus, bytes by
// table, what sharing saved, and names cut to 62 bytes. Of a damaged file it counts what can be
// reached; the status is then kStatusNo, else kStatusYes.
int printStats(const InventoryJob& job);

}  // namespace Orvane
