#include "output/two_table_layout.h"

#include <algorithm>
#include <string_view>

#include "output/data_record.h"
#include "output/family_layout.h"

namespace Orvane {

namespace {

std::string_view comparedName(const MenuNode& node) {
  const std::string_view name = storedName(node);
  return name.substr(0, name.find('\0'));
}

class TwoTables {
 public:
  TwoTables(TreeTable& treeTable, DataTable& dataTable, DataRecordIndex& idMap)
      : treeTable_(treeTable), dataTable_(dataTable), idMap_(idMap) {}

  using Link = TreeTable::Link;

  std::uint32_t size() const { return treeTable_.size(); }

  Link append(const MenuNode& node) {
    const std::uint32_t dataIndex = dataIndexOf(node);
    const bool isLeaf = node.getNodeType() == NODE_TYPE_MEDIA && node.childCount() == 0;
    if (!isLeaf || isDeferred(node)) return treeTable_.append(node, dataIndex);
    treeTable_.appendLeaf(dataIndex);
    return kNeverLinked;
  }

  void setFirstChild(Link link, std::uint32_t index) { treeTable_.setFirstChild(link, index); }

  static bool isDeferred(const MenuNode& child) {
    return child.getRecType() == RecType::kPlainMenu && child.getName() == "Playlists";
  }

  void expect(const MenuNode& node, int step) const {
    const std::uint32_t token = node.getContentToken();
    if (token == 0 || token >= idMap_.byToken.size()) return;
    if (step == 0) {
      __builtin_prefetch(&idMap_.byToken[token]);
    } else if (idMap_.byToken[token] == 0) {
      if (step == 1) {
        node.prefetchContent();
      } else {
        idMap_.byNameAndId.prefetch(hashOf(node));
      }
    }
  }

 private:
  static constexpr Link kNeverLinked = 0xFFFFFFFF;

  static std::uint32_t hashOf(const MenuNode& node) {
    return hashNameAndId(comparedName(node), node.getMediaId());
  }

  std::uint32_t dataIndexOf(const MenuNode& node) {
    const std::uint32_t token = node.getContentToken();
    if (token == 0) return findOrAdd(node);
    auto& byToken = idMap_.byToken;
    if (token >= byToken.size()) {
      byToken.resize(std::max<std::size_t>(token + std::size_t{1}, 2 * byToken.size()));
    }
    if (byToken[token] == 0) byToken[token] = findOrAdd(node);
    return byToken[token];
  }

  std::uint32_t findOrAdd(const MenuNode& node) {
    const std::string_view name = comparedName(node);
    const auto next = static_cast<std::uint32_t>(dataTable_.size());
    const std::uint32_t index =
        idMap_.byNameAndId.findOrInsert(hashOf(node), next, [&](std::uint32_t candidate) {
          const MenuNode& other = *dataTable_[candidate];
          return other.getMediaId() == node.getMediaId() && comparedName(other) == name;
        });
    if (index == next) dataTable_.push_back(&node);
    return index;
  }

  TreeTable& treeTable_;
  DataTable& dataTable_;
  DataRecordIndex& idMap_;
};

}  // namespace

std::uint32_t layoutChildren(const MenuNode* node, TreeTable& treeTable, DataTable& dataTable,
                             DataRecordIndex& idMap) {
  TwoTables tables(treeTable, dataTable, idMap);
  return layoutFamilies(node, tables);
}

}  // namespace Orvane
