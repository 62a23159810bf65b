#include "inventory_comparison.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvane::fuzz {
namespace {

std::string atRecord(std::uint32_t record, const char* what) {
  return "record " + std::to_string(record) + ": " + what;
}

bool isPlaylistsMenu(const MenuNode& node) {
  return node.getRecType() == 7 && node.getName() == "Playlists";
}

std::string_view fieldOf(const MenuNode& node) {
  return node.getName().substr(0, 64);
}

std::string_view shownName(const MenuNode& node) {
  const std::string_view field = fieldOf(node);
  return field.substr(0, field.find('\0'));
}

// Walks the tree and the records side by side, and finds each record's node.
class Walk {
 public:
  Walk(const MenuTree& tree, const InventoryView& view)
      : view_(view), root_(*tree.getRoot()), nodes_(view.recordCount(), nullptr) {}

  std::string run() {
    if (nodes_.empty()) return "there is no root";
    nodes_[0] = &root_;
    next_ = 1;
    pending_.push_back({&root_, 0});
    while (!pending_.empty()) {
      const Place place = pending_.back();
      pending_.pop_back();
      const char* const what = enter(place);
      if (what != nullptr) return atRecord(place.record, what);
    }
    return next_ == nodes_.size() ? "" : atRecord(next_, "belongs to no node");
  }

  const std::vector<const MenuNode*>& nodes() const { return nodes_; }

 private:
  struct Place {
    const MenuNode* node;
    std::uint32_t record;
    bool isDisplaced = false;
  };

  const char* enter(const Place& place) {
    const RecordLinks links = view_.links(place.record);
    const MenuNode& node = *place.node;
    if (links.childCount != node.childCount()) return "another child count";
    if (place.isDisplaced)
      return links.firstChildIndex == 0 ? nullptr : "displaced, but has a link";
    if (node.getNodeType() == 2) return links.isLeaf() ? nullptr : "a leaf with a link";
    if (links.firstChildIndex != next_) return "another first child";
    if (node.childCount() > nodes_.size() - next_) return "children beyond the table's end";

    // Visited from the last pushed on: the playlists' menu after all others.
    std::vector<Place> family;
    Place deferred{nullptr, 0};
    for (std::size_t i = 0; i < node.childCount(); ++i) {
      const Place child{node.childrenBegin()[i], next_};
      nodes_[next_++] = child.node;
      if (view_.layout() == Layout::kTwoTable && isPlaylistsMenu(*child.node)) {
        if (deferred.node != nullptr) family.push_back({deferred.node, deferred.record, true});
        deferred = child;
      } else {
        family.push_back(child);
      }
    }
    if (deferred.node != nullptr) family.push_back(deferred);
    pending_.insert(pending_.end(), family.rbegin(), family.rend());
    return nullptr;
  }

  const InventoryView& view_;
  const MenuNode& root_;
  std::vector<const MenuNode*> nodes_;
  std::vector<Place> pending_;
  std::uint32_t next_ = 0;  // the first record that belongs to no node yet
};

const char* itemDifference(const MenuNode& node, const ItemView& item) {
  if (!item) return "no contents";
  if (item.mediaId() != node.getMediaId()) return "another id";
  const std::string_view name = fieldOf(node);
  const std::string_view field = item.nameField();
  if (field.substr(0, name.size()) != name) return "another name";
  if (field.find_first_not_of('\0', name.size()) != std::string_view::npos) return "a name's tail";
  if (item.recType() != (node.getRecType() & 0xFF)) return "another type";
  if (item.rating() != (node.getRating() & 0xFF)) return "another rating";
  if (item.attribMask() != (node.getAttribMask() & 0xFFFF)) return "another mask";
  return nullptr;
}

}  // namespace

std::string differenceOf(const MenuTree& tree, const InventoryView& view) {
  Walk walk(tree, view);
  std::string difference = walk.run();
  if (!difference.empty()) return difference;

  struct Shared {
    std::uint32_t dataIndex;
    const MenuNode* owner;
  };
  std::map<std::pair<std::uint32_t, std::string_view>, Shared> firsts;
  std::uint32_t owned = 0;
  for (std::uint32_t record = 0; record < view.recordCount(); ++record) {
    const MenuNode* const node = walk.nodes()[record];
    Shared shared{owned, node};
    if (record != 0 && view.layout() == Layout::kTwoTable) {
      const std::pair key(node->getMediaId(), shownName(*node));
      shared = firsts.try_emplace(key, shared).first->second;
    }
    if (shared.owner == node) ++owned;
    if (view.links(record).dataIndex != shared.dataIndex) {
      return atRecord(record, "another data record");
    }
    const char* const what = itemDifference(*shared.owner, view.item(shared.dataIndex));
    if (what != nullptr) return atRecord(record, what);
  }
  return view.dataCount() == owned ? "" : "data records that no node has";
}

}  // namespace Orvane::fuzz
