#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "output/inventory_format.h"
#include "tree/menu_node.h"

namespace Orvane {

// What of a node's name can reach the file: its first 64 bytes. A longer name exists only where a
// name was set on top of another one.
inline std::string_view storedName(const MenuNode& node) {
  return node.getName().substr(0, kNameFieldSize);
}

// Fills a whole data record from the node:
//   0  mediaId     4 bytes
//   4  name       64 bytes, zero-filled; no terminator when it has 64 bytes
//  68  recType     low 8 bits
//  69  rating      low 8 bits
//  70  attribMask  low 16 bits
// The node record of the one-table layout ends with the same 72 bytes.
void fillDataRecord(const MenuNode& node, std::span<std::uint8_t, kDataRecordSize> record);

}  // namespace Orvane
