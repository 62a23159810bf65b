#pragma once

#include "inventory/track_manager.h"
#include "io/buffer.h"
#include "tree/menu_tree.h"

namespace Orvane {

// The one place from which a run fills and writes a menu tree. Holds nothing: each operation is
// that of the same name in the subsystem that does the work, whose header gives its contract.
// buildTreeFromXml loads its subsystem first, and throws as loadXmlReader() does.
class InventoryBuilder {
 public:
  void buildMenuFromInventory(const TrackManager& manager, MenuTree& tree) const;
  void turnInventoryIntoMenu(TrackManager& manager, MenuTree& tree) const;
  void buildTreeFromXml(const char* xmlFile, MenuTree& tree) const;
  bool writeOneTable(const MenuTree& tree, Buffer& buffer) const;
  bool writeTwoTable(const MenuTree& tree, Buffer& buffer) const;
};

}  // namespace Orvane
