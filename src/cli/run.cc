#include "cli/run.h"

#include <memory>
#include <string>
#include <utility>

#include "cli/inventory_builder.h"
#include "inventory/list_files.h"
#include "inventory/track_manager.h"
#include "io/disk_buffer.h"
#include "tree/menu_tree.h"

namespace Orvane {

namespace {

void fillFromInventory(const Options& options, const InventoryBuilder& builder,
                       TrackManager& manager, MenuTree& tree) {
  readInventoryFiles(manager, options.tracksFile, options.playlistsFile, true);
  builder.turnInventoryIntoMenu(manager, tree);
  MenuTree::sortTree(tree.getRoot());
  if (!options.tryAndBuy) return;
  // After the ordering, so that it is the root's last child whatever the others are called.
  auto partition = std::make_unique<MenuNode>();
  partition->setAll(NODE_TYPE_MENU, 0, "Try & Buy", RecType::kPlainMenu, 0,
                    static_cast<std::uint32_t>(options.tryAndBuyPartitionId));
  tree.addChild(tree.getRoot(), std::move(partition));
}

}  // namespace

void run(const Options& options) {
  // Destroyed in reverse: the tree's nodes refer to the manager's tracks.
  TrackManager manager;
  const InventoryBuilder builder;
  const std::unique_ptr<Buffer> buffer =
      std::make_unique<DiskBuffer>(std::string(options.outputFile));
  const auto tree = std::make_unique<MenuTree>();
  if (options.rootName != nullptr) tree->getRoot()->setName(options.rootName);

  if (options.xmlMode) {
    builder.buildTreeFromXml(options.xmlFile, *tree);
  } else {
    fillFromInventory(options, builder, manager, *tree);
  }

  if (options.tables == 1) {
    builder.writeOneTable(*tree, *buffer);
  } else {
    builder.writeTwoTable(*tree, *buffer);
  }
}

}  // namespace Orvane
