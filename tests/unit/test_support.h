// What several unit tests need: folders that clean up after themselves, whole files, trees in one
// line and trees as text.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tree/menu_node.h"
#include "tree/track_table.h"

namespace Orvane::test {

// An empty folder that lives as long as the object.
class TempDir {
 public:
  TempDir() {
    std::string name = (std::filesystem::temp_directory_path() / "skeinmake-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder: " + name);
    path_ = name;
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string operator/(std::string_view name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// A file of that name is replaced, not overwritten: file systems may wait for the disk when a file
// is cut off and written again.
inline void writeFile(const std::string& path, std::string_view content) {
  if (std::filesystem::is_regular_file(std::filesystem::symlink_status(path))) {
    std::filesystem::remove(path);
  }
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

inline std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The bytes that pairs of hexadecimal digits stand for; blanks between the pairs are skipped.
inline std::string bytesFromHex(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == ' ') {
      ++i;
      continue;
    }
    bytes += static_cast<char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16));
    i += 2;
  }
  return bytes;
}

// Collects what goes to a standard stream while the object lives. Takes no memory for the first
// few lines, so that it can listen to code that runs out of it.
class CapturedStream {
 public:
  explicit CapturedStream(std::ostream& stream)
      : stream_(stream), old_(stream.rdbuf(&collector_)) {}
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;
  ~CapturedStream() { stream_.rdbuf(old_); }

  const std::string& text() const { return collector_.text; }

 private:
  struct Collector : std::streambuf {
    Collector() { text.reserve(1000); }
    int_type overflow(int_type c) override {
      text += traits_type::to_char_type(c);
      return c;
    }
    std::streamsize xsputn(const char* data, std::streamsize size) override {
      text.append(data, static_cast<std::size_t>(size));
      return size;
    }
    std::string text;
  };

  std::ostream& stream_;
  Collector collector_;
  std::streambuf* old_;
};

inline void addTracks(TrackTable& table, std::initializer_list<const Track*> tracks) {
  for (const Track* const track : tracks) table.push_back(track);
}

// Attaches a new node to `parent`, which owns it.
inline MenuNode& addNode(MenuNode& parent, std::uint32_t nodeType, std::uint32_t mediaId,
                         std::string_view name, std::uint32_t recType = 0, std::uint32_t rating = 0,
                         std::uint32_t attribMask = 0) {
  auto owned = std::make_unique<MenuNode>();
  MenuNode& node = *owned;
  node.setAll(nodeType, mediaId, name, recType, rating, attribMask);
  parent.addChild(std::move(owned));
  return node;
}

inline MenuNode& addMenu(MenuNode& parent, std::uint32_t mediaId, std::string_view name,
                         std::uint32_t recType = RecType::kPlainMenu) {
  return addNode(parent, NODE_TYPE_MENU, mediaId, name, recType);
}

inline MenuNode& addMedia(MenuNode& parent, std::uint32_t mediaId, std::string_view name) {
  return addNode(parent, NODE_TYPE_MEDIA, mediaId, name);
}

// "nodeType mediaId name recType rating attribMask" of one node.
inline std::string describeNode(const MenuNode& node) {
  std::ostringstream text;
  text << node.getNodeType() << ' ' << node.getMediaId() << " '" << node.getName() << "' "
       << node.getRecType() << ' ' << node.getRating() << ' ' << node.getAttribMask();
  return text.str();
}

// One line a node in document order, each preceded by its depth. Fit for trees of any depth.
inline std::vector<std::string> describeTree(const MenuNode& root) {
  std::vector<std::string> lines;
  std::vector<std::pair<const MenuNode*, std::size_t>> pending{{&root, 0}};
  while (!pending.empty()) {
    const auto [node, depth] = pending.back();
    pending.pop_back();
    lines.push_back(std::to_string(depth) + ": " + describeNode(*node));
    for (std::size_t i = node->childCount(); i-- > 0;) {
      pending.emplace_back(node->childrenBegin()[i], depth + 1);
    }
  }
  return lines;
}

}  // namespace Orvane::test
