#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "plain/plain_inventory.h"

namespace Orvane::plain {

struct PlainNode {
  std::uint32_t nodeType = 0;
  std::uint32_t mediaId = 0;
  std::string name;
  std::uint32_t recType = 0;
  std::uint32_t rating = 0;
  std::uint32_t attribMask = 0;
  const PlainTrack* track = nullptr;  // of a media leaf; the inventory's
  std::vector<std::unique_ptr<PlainNode>> children;
};

// A name of more than 64 bytes goes, cut to 62, before the name that the node has.
void plainSetName(PlainNode& node, const std::string& name);

// The root as every run begins with it.
std::unique_ptr<PlainNode> plainRoot();

// Appends the six filled categories to `root`.
void plainBuildMenu(const PlainInventory& inventory, PlainNode& root);

// Goes as deep as the tree does.
void plainSortTree(PlainNode& node);

}  // namespace Orvane::plain
