#include "plain/plain_writer.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace Orvane::plain {
namespace {

constexpr std::uint32_t kNoChildren = 0xFFFFFFFF;

std::string number(std::uint32_t value, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
  return bytes;
}

std::string header(std::uint32_t tableCount) {
  return number(0, 1) + number(1, 1) + number(0, 2) + number(0, 4) + number(tableCount, 4) +
         number(16, 4);
}

std::string descriptor(std::uint32_t kind, std::uint32_t offset, std::size_t count,
                       std::uint32_t size) {
  return number(kind, 1) + number(1, 1) + number(0, 2) + number(offset, 4) +
         number(static_cast<std::uint32_t>(count), 4) + number(size, 4);
}

std::uint32_t countOf(const PlainNode& node) {
  return static_cast<std::uint32_t>(node.children.size());
}

std::string nameField(const PlainNode& node) {
  std::string field = node.name;
  field.resize(64, '\0');
  return field;
}

std::string contents(const PlainNode& node) {
  return number(node.mediaId, 4) + nameField(node) + number(node.recType, 1) +
         number(node.rating, 1) + number(node.attribMask, 2);
}

struct TreeRow {
  std::uint32_t firstChildIndex = 0;
  std::uint32_t childCount = 0;
  std::size_t dataIndex = 0;
};

struct TwoTables {
  std::vector<TreeRow> tree;
  std::vector<std::string> data;
};

// Equal entries share the data record of the first of them; the root's, at 0, is never shared.
std::size_t dataIndexOf(TwoTables& tables, const PlainNode& node) {
  const std::string record = contents(node);
  for (std::size_t i = 1; i < tables.data.size(); ++i) {
    const std::string& other = tables.data[i];
    if (other.compare(0, 4, record, 0, 4) == 0 && std::strncmp(&other[4], &record[4], 64) == 0) {
      return i;
    }
  }
  tables.data.push_back(record);
  return tables.data.size() - 1;
}

std::uint32_t layoutTwo(TwoTables& tables, const PlainNode& node) {
  if (node.nodeType == 2) return kNoChildren;
  const std::size_t base = tables.tree.size();
  for (const auto& child : node.children) {
    const std::size_t dataIndex = dataIndexOf(tables, *child);
    tables.tree.push_back({0, countOf(*child), dataIndex});
  }
  std::size_t deferred = node.children.size();
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    const PlainNode& child = *node.children[i];
    if (child.name == "Playlists" && child.recType == 7) {
      deferred = i;
    } else {
      const std::uint32_t first = layoutTwo(tables, child);
      tables.tree[base + i].firstChildIndex = first;
    }
  }
  if (deferred < node.children.size()) {
    const std::uint32_t first = layoutTwo(tables, *node.children[deferred]);
    tables.tree[base + deferred].firstChildIndex = first;
  }
  return static_cast<std::uint32_t>(base);
}

struct NodeRow {
  const PlainNode* node;
  std::uint32_t firstChildIndex;
};

std::uint32_t layoutOne(std::vector<NodeRow>& table, const PlainNode& node) {
  if (node.nodeType == 2) return kNoChildren;
  const std::size_t base = table.size();
  for (const auto& child : node.children) table.push_back({child.get(), 0});
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    const std::uint32_t first = layoutOne(table, *node.children[i]);
    table[base + i].firstChildIndex = first;
  }
  return static_cast<std::uint32_t>(base);
}

}  // namespace

std::string plainTwoTableFile(const PlainNode& root) {
  TwoTables tables;
  tables.data.push_back(contents(root));
  tables.tree.push_back({0, countOf(root), 0});
  const std::uint32_t first = layoutTwo(tables, root);
  tables.tree[0].firstChildIndex = first;

  const std::uint32_t treeSize = 12 * static_cast<std::uint32_t>(tables.tree.size());
  std::string file = header(2) + descriptor(1, 48, tables.tree.size(), 12) +
                     descriptor(2, 48 + treeSize, tables.data.size(), 72);
  for (const TreeRow& row : tables.tree) {
    file += number(row.firstChildIndex, 4) + number(row.childCount, 4) +
            number(static_cast<std::uint32_t>(row.dataIndex), 4);
  }
  for (const std::string& record : tables.data) file += record;
  return file;
}

std::string plainOneTableFile(const PlainNode& root) {
  std::vector<NodeRow> table{{&root, 0}};
  const std::uint32_t first = layoutOne(table, root);
  table[0].firstChildIndex = first;

  std::string file = header(1) + descriptor(3, 32, table.size(), 80);
  for (const NodeRow& row : table) {
    file += number(row.firstChildIndex, 4) + number(countOf(*row.node), 4) + contents(*row.node);
  }
  return file;
}

}  // namespace Orvane::plain
