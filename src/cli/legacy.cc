#include "cli/legacy.h"

#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "cli/inventory_builder.h"
#include "cli/terminate_handler.h"
#include "inventory/list_files.h"
#include "inventory/track_manager.h"
#include "io/disk_buffer.h"
#include "tree/menu_tree.h"

namespace Orvane {

namespace {

// The wording of both texts, odd grammar and blanks included, is what installations know.
void printHint() {
  std::cout << "./skeinmake --help  for usage information\n";
}

void printHelp(const char* program) {
  std::cout << "\nThis program creates a binary file representing the inventory "
            << "a consumer.\n\n <usage>: " << program
            << " <--param> <filelist> <playlistFiles> <outputFile> <xmlFile>\n"
            << "--param: \n"
            << "\t--one-table\tCreates a binary file contains a one table "
            << "representation of data\n"
            << "\t--two-table\tCreates a binary file contains a two table "
            << "representation of data\n"
            << "\t--playlistID\tConsider the first integer after the playlist "
            << "name as the playlist id\n"
            << "<usage>: " << program << " <--X-table> <--playlistID> <filelist> "
            << "<playlistFiles> <outputFile> <xmlFile>\n";
}

// Where the positions stand; nullptr for those that aren't there.
struct Positions {
  bool withPlaylistIds;
  const char* tracksFile;
  const char* playlistsFile;
  const char* outputFile;
  const char* xmlFile;
};

Positions findPositions(int argc, char** argv) {
  const bool withPlaylistIds = std::string_view(argv[2]) == "--playlistID";
  const int first = withPlaylistIds ? 3 : 2;
  const auto at = [=](int i) { return first + i < argc ? argv[first + i] : nullptr; };
  return {withPlaylistIds, at(0), at(1), at(2), at(3)};
}

}  // namespace

int legacyMain(int argc, char** argv) {
  if (argc <= 1) {
    printHint();
    return 0;
  }
  const std::string_view layout = argv[1];
  if (layout == "--help") {
    printHelp(argv[0]);
    return 0;
  }
  if (argc <= 4) {
    printHint();
    return 0;
  }
  const Positions positions = findPositions(argc, argv);
  if (positions.outputFile == nullptr) {
    printHint();
    return 0;
  }
  reportUncaughtErrors(positions.outputFile);

  // Destroyed in reverse: the tree's nodes refer to the manager's tracks.
  TrackManager manager;
  const InventoryBuilder builder;
  readInventoryFiles(manager, positions.tracksFile, positions.playlistsFile,
                     positions.withPlaylistIds);
  const std::unique_ptr<Buffer> buffer =
      std::make_unique<DiskBuffer>(std::string(positions.outputFile));
  const auto tree = std::make_unique<MenuTree>();
  builder.buildMenuFromInventory(manager, *tree);
  if (positions.xmlFile != nullptr) builder.buildTreeFromXml(positions.xmlFile, *tree);
  MenuTree::sortTree(tree->getRoot());

  // Only now is the layout looked at: a wrong one costs the reading, but no output is touched.
  if (layout == "--one-table") {
    builder.writeOneTable(*tree, *buffer);
  } else if (layout == "--two-table") {
    builder.writeTwoTable(*tree, *buffer);
  } else {
    std::cout << "<" << layout << "> Invalid argument\n";
  }
  return 0;
}

}  // namespace Orvane
