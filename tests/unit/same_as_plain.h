// What the program makes of an inventory or of list files, against the plain rendering of the same
// rules.
#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "inventory/list_files.h"
#include "inventory/menu_builder.h"
#include "output/one_table_writer.h"
#include "output/two_table_writer.h"
#include "plain/plain_comparison.h"
#include "plain/plain_list_files.h"
#include "plain/plain_writer.h"
#include "recording_buffer.h"
#include "test_support.h"

namespace Orvane::test {

// The trees that follow from a filled manager.
struct Trees {
  MenuTree tree;
  std::unique_ptr<plain::PlainNode> root = plain::plainRoot();
};

inline void buildSameTrees(const TrackManager& manager, const plain::PlainInventory& inventory,
                           Trees& trees) {
  buildMenuFromInventory(manager, trees.tree);
  plain::plainBuildMenu(inventory, *trees.root);
  ASSERT_EQ(plain::differenceOf(*trees.tree.getRoot(), *trees.root), "");

  MenuTree::sortTree(trees.tree.getRoot());
  plain::plainSortTree(*trees.root);
  ASSERT_EQ(plain::differenceOf(*trees.tree.getRoot(), *trees.root), "");
}

// The files, too; the plain one takes time that grows with the square of the inventory.
inline void expectSameMenus(const TrackManager& manager, const plain::PlainInventory& inventory) {
  Trees trees;
  ASSERT_NO_FATAL_FAILURE(buildSameTrees(manager, inventory, trees));
  // To look at all nodes of a tree may change how it is held: one that nobody has looked at, too.
  MenuTree unseen;
  buildMenuFromInventory(manager, unseen);
  MenuTree::sortTree(unseen.getRoot());

  for (const MenuTree* const tree : {&std::as_const(trees.tree), &std::as_const(unseen)}) {
    RecordingBuffer twoTables;
    writeTwoTable(*tree, twoTables);
    ASSERT_TRUE(twoTables.content == plain::plainTwoTableFile(*trees.root)) << "two-table bytes";
    RecordingBuffer oneTable;
    writeOneTable(*tree, oneTable);
    ASSERT_TRUE(oneTable.content == plain::plainOneTableFile(*trees.root)) << "one-table bytes";
  }
}

// From two files to both layouts, with all that is said on the way.
inline void expectSameReading(const std::string& tracks, const std::string& playlists,
                              bool withPlaylistIds) {
  TrackManager manager;
  const CapturedStream output(std::cout);
  const CapturedStream complaints(std::cerr);
  readInventoryFiles(manager, tracks.c_str(), playlists.c_str(), withPlaylistIds);
  plain::PlainInventory inventory;
  const plain::PlainReading reading =
      plain::plainReadListFiles(inventory, tracks, playlists, withPlaylistIds);

  std::string lines;
  for (const std::string& complaint : reading.complaints) lines += complaint + "\n";
  ASSERT_EQ(output.text(), reading.output);
  ASSERT_EQ(complaints.text(), lines);
  ASSERT_EQ(plain::differenceOf(manager, inventory), "");
  ASSERT_NO_FATAL_FAILURE(expectSameMenus(manager, inventory));
}

}  // namespace Orvane::test
