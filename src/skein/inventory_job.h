// One verb at work on one inventory, and the loop over several.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "reader/inventory_view.h"
#include "skein/common_options.h"
#include "skein/diagnostics.h"
#include "skein/json_writer.h"
#include "skein/output_buffer.h"
#include "skein/style.h"

namespace Orvane {

// Where and how a verb prints.
struct Printing {
  OutputBuffer& out;
  Diagnostics& diagnostics;
  Format format = Format::kText;
  Style style{};
  bool quiet = false;
  bool verbose = false;
};

// What a verb gets for each file. For the json formats the loop has begun the object of this file
// ("json": the verb adds members) or written the line that announces it ("jsonl": the verb adds
// lines), and it ends them.
struct InventoryJob {
  const InventoryView& view;
  std::string_view file;
  Printing& printing;
  JsonWriter& json;
};

using InventoryWork = std::function<int(const InventoryJob&)>;

// Opens each file in turn, does `work` on it, and returns the highest status that came up. A file
// that cannot be read or is no inventory is reported (kStatusTrouble) and the next one taken. With
// a json format writes the document around it; `schema` is its name and version.
int forEachInventory(const std::vector<std::string>& files, std::string_view schema,
                     Printing& printing, const InventoryWork& work);

// The same for bytes that are already there, named `file`.
int workOnBytes(std::span<const std::uint8_t> bytes, std::string_view file, std::string_view schema,
                Printing& printing, const InventoryWork& work);

// "one-table" or "two-table".
std::string_view nameOf(Layout layout);

}  // namespace Orvane
