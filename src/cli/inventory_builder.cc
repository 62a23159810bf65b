#include "cli/inventory_builder.h"

#include "cli/xml_module.h"
#include "inventory/menu_builder.h"
#include "output/one_table_writer.h"
#include "output/two_table_writer.h"

namespace Orvane {

void InventoryBuilder::buildMenuFromInventory(const TrackManager& manager, MenuTree& tree) const {
  Orvane::buildMenuFromInventory(manager, tree);
}

void InventoryBuilder::turnInventoryIntoMenu(TrackManager& manager, MenuTree& tree) const {
  Orvane::turnInventoryIntoMenu(manager, tree);
}

void InventoryBuilder::buildTreeFromXml(const char* xmlFile, MenuTree& tree) const {
  loadXmlReader()(xmlFile, tree);
}

bool InventoryBuilder::writeOneTable(const MenuTree& tree, Buffer& buffer) const {
  return Orvane::writeOneTable(tree, buffer);
}

bool InventoryBuilder::writeTwoTable(const MenuTree& tree, Buffer& buffer) const {
  return Orvane::writeTwoTable(tree, buffer);
}

}  // namespace Orvane
