#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "skein/inventory_job.h"

namespace Orvane {

inline constexpr std::string_view kDumpSchema = "skein-dump/1";

struct DumpOptions {
  // Names from below the root down to what is to be shown, which may be several records of the same
  // names. Empty: the start record.
  std::vector<std::string> path;
  // The record where to start, below which `path` is looked for.
  std::uint32_t record = 0;
  // How many levels below each record that is shown.
  std::uint32_t depth = std::numeric_limits<std::uint32_t>::max();
};

// Prints the menu tree, damage where it shows. Returns kStatusNo if there was any, or if what was
// asked for does not exist, else kStatusYes. Records that no menu leads to and data records that
// nothing uses are reported when the whole tree is printed.
int dumpInventory(const InventoryJob& job, const DumpOptions& options);

}  // namespace Orvane
