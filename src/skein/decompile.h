#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "skein/inventory_job.h"
#include "skein/output_buffer.h"

namespace Orvane {

struct DecompileOptions {
  // How many findings are printed, of damage and of what cannot be carried over together.
  std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
};

// Writes the XML menu tree from which `skeinmake -x` makes the same bytes again, with the number of
// tables that the file has. What the file holds and such a tree cannot say goes to the job's output
// by rule name and path, as does damage; the XML then holds the rest, and the status is kStatusNo.
// Otherwise nothing goes to the job's output and the status is kStatusYes.
//
// The job's format must be text.
int decompileInventory(const InventoryJob& job, const DecompileOptions& options, OutputBuffer& xml);

}  // namespace Orvane
