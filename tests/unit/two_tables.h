#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::test {

inline std::uint32_t numberAt(std::string_view bytes, std::size_t offset, std::size_t width = 4) {
  std::uint32_t value = 0;
  for (std::size_t i = width; i-- > 0;) {
    value = value << 8 | static_cast<std::uint8_t>(bytes.at(offset + i));
  }
  return value;
}

// One line of the tree table.
struct Links {
  std::uint32_t firstChildIndex;
  std::uint32_t childCount;
  std::uint32_t dataIndex;
  bool operator==(const Links&) const = default;
};

inline void PrintTo(const Links& links, std::ostream* out) {
  *out << '{' << links.firstChildIndex << ", " << links.childCount << ", " << links.dataIndex
       << '}';
}

// The tables of a file in the two-table layout, found by its descriptors.
struct Tables {
  explicit Tables(std::string_view file) {
    const std::uint32_t treeOffset = numberAt(file, 20);
    const std::uint32_t dataOffset = numberAt(file, 36);
    for (std::uint32_t i = 0; i < numberAt(file, 24); ++i) {
      const std::size_t at = treeOffset + 12 * i;
      tree.push_back({numberAt(file, at), numberAt(file, at + 4), numberAt(file, at + 8)});
    }
    for (std::uint32_t i = 0; i < numberAt(file, 40); ++i) {
      data.push_back(std::string(file.substr(dataOffset + 72 * i, 72)));
      const std::string field = data.back().substr(4, 64);
      names.push_back(field.substr(0, field.find('\0')));
    }
    EXPECT_EQ(file.size(), 48 + 12 * tree.size() + 72 * data.size());
  }

  // The names of the tree records, in order.
  std::vector<std::string> treeNames() const {
    std::vector<std::string> result;
    for (const Links& links : tree) result.push_back(names.at(links.dataIndex));
    return result;
  }

  std::vector<Links> tree;
  std::vector<std::string> data;
  std::vector<std::string> names;
};

}  // namespace Orvane::test
