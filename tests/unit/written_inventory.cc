#include "written_inventory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "cli/inventory_builder.h"
#include "io/buffer.h"
#include "output/one_table_writer.h"
#include "output/two_table_writer.h"

namespace Orvane {
namespace {

// Takes what a writer puts out.
class MemoryBuffer : public Buffer {
 public:
  bool write(const char* data, int length) override {
    bytes.insert(bytes.end(), data, data + length);
    return true;
  }
  bool read(char* /*data*/, int /*length*/) override { return false; }
  long seek(long /*offset*/, int /*whence*/) override { return -1; }
  bool nextBlock(char** /*data*/, unsigned* /*length*/) override { return false; }
  bool commitBlock(int /*length*/) override { return false; }

  std::vector<std::uint8_t> bytes;
};

// A file that is there while this object is.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& content) : path_(testing::TempDir() + "menu.XXXXXX") {
    const int fd = ::mkstemp(path_.data());
    EXPECT_GE(fd, 0);
    EXPECT_EQ(::write(fd, content.data(), content.size()), static_cast<ssize_t>(content.size()));
    ::close(fd);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { ::unlink(path_.c_str()); }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace

std::vector<std::uint8_t> written(const MenuTree& tree, Layout layout) {
  MemoryBuffer buffer;
  if (layout == Layout::kOneTable) {
    writeOneTable(tree, buffer);
  } else {
    writeTwoTable(tree, buffer);
  }
  return buffer.bytes;
}

std::vector<std::uint8_t> compiled(const std::string& xml, Layout layout) {
  const TemporaryFile file(xml);
  MenuTree tree;
  InventoryBuilder().buildTreeFromXml(file.path().c_str(), tree);
  return written(tree, layout);
}

}  // namespace Orvane
