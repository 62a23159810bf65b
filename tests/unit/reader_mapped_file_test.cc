#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "inventory_image.h"
#include "reader/mapped_file.h"

namespace Orvane {
namespace {

// A fresh folder that goes away with its files.
class Folder {
 public:
  Folder() : path_(testing::TempDir() + "mapped.XXXXXX") {
    EXPECT_NE(::mkdtemp(path_.data()), nullptr);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    ::unlink(file().c_str());
    ::rmdir(path_.c_str());
  }
  std::string file() const { return path_ + "/file"; }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::string textOf(const MappedFile& file) {
  return {file.bytes().begin(), file.bytes().end()};
}

TEST(MappedFile, HoldsTheBytesOfAFile) {
  const Folder folder;
  std::ofstream(folder.file()) << "some bytes";
  std::string error;
  auto file = MappedFile::open(folder.file(), error);
  ASSERT_TRUE(file.has_value()) << error;
  EXPECT_EQ(textOf(*file), "some bytes");
  const MappedFile moved = *std::move(file);
  EXPECT_EQ(textOf(moved), "some bytes");
}

TEST(MappedFile, TakesAnEmptyFile) {
  const Folder folder;
  std::ofstream(folder.file()).flush();
  std::string error;
  const auto file = MappedFile::open(folder.file(), error);
  ASSERT_TRUE(file.has_value()) << error;
  EXPECT_TRUE(file->bytes().empty());
}

TEST(MappedFile, SaysWhyItCannotBeRead) {
  const Folder folder;
  std::string error;
  EXPECT_FALSE(MappedFile::open(folder.file(), error).has_value());
  EXPECT_EQ(error, "No such file or directory");
  EXPECT_FALSE(MappedFile::open(folder.path(), error).has_value());
  EXPECT_EQ(error, "Is a directory");
}

// The lowest descriptor that is free.
int nextDescriptor() {
  const int next = ::dup(STDIN_FILENO);
  ::close(next);
  return next;
}

TEST(MappedFile, ReadsStandardInputFromWhereItStandsAndLeavesItOpen) {
  const Folder folder;
  std::ofstream(folder.file()) << "some bytes";
  const int saved = ::dup(STDIN_FILENO);
  const int fd = ::open(folder.file().c_str(), O_RDONLY);
  EXPECT_EQ(::dup2(fd, STDIN_FILENO), STDIN_FILENO);
  ::close(fd);
  std::string error;
  for (const std::string expected : {"some bytes", "bytes"}) {
    const auto offset = static_cast<off_t>(10 - expected.size());
    EXPECT_EQ(::lseek(STDIN_FILENO, offset, SEEK_SET), offset);
    const auto file = MappedFile::open("-", error);
    EXPECT_TRUE(file.has_value()) << error;
    EXPECT_EQ(file ? textOf(*file) : "", expected);
  }
  EXPECT_EQ(::dup2(saved, STDIN_FILENO), STDIN_FILENO);
  ::close(saved);
}

TEST(MappedFile, ClosesAFile) {
  const int next = nextDescriptor();
  std::string error;
  EXPECT_TRUE(MappedFile::open("/dev/null", error).has_value()) << error;
  EXPECT_FALSE(MappedFile::open("/", error).has_value());
  EXPECT_EQ(nextDescriptor(), next);
}

// Returns how many of the bytes the file took.
std::size_t writeAll(int fd, std::span<const char> bytes) {
  std::size_t taken = 0;
  while (taken < bytes.size()) {
    const ssize_t written = ::write(fd, bytes.data() + taken, bytes.size() - taken);
    if (written <= 0) break;
    taken += static_cast<std::size_t>(written);
  }
  return taken;
}

// Sends `bytes` into a named pipe while it is being read.
std::string throughPipe(const std::string& bytes, std::size_t& taken) {
  const Folder folder;
  EXPECT_EQ(::mkfifo(folder.file().c_str(), 0600), 0);
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  std::thread writer([&] {
    const int fd = ::open(folder.file().c_str(), O_WRONLY);
    taken = writeAll(fd, bytes);
    ::close(fd);
  });
  std::string error;
  const auto file = MappedFile::open(folder.file(), error);
  writer.join();
  static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
  EXPECT_TRUE(file.has_value()) << error;
  return file ? textOf(*file) : std::string();
}

TEST(MappedFile, ReadsAPipeToItsEnd) {
  const InventoryImage image(Layout::kOneTable, menu("R", std::vector<Sketch>(5000, menu("A"))));
  const std::string bytes(image.bytes().begin(), image.bytes().end());
  std::size_t taken = 0;
  EXPECT_TRUE(throughPipe(bytes, taken) == bytes);
  EXPECT_TRUE(throughPipe(bytes + "more", taken) == bytes + "more");
  EXPECT_EQ(throughPipe("", taken), "");
  EXPECT_EQ(throughPipe("short", taken), "short");
}

// The first piece has no whole header, the second no descriptor that would say how much follows.
TEST(MappedFile, ReadsAPipeThatBeginsWithLittle) {
  const InventoryImage image(Layout::kOneTable, menu("R", std::vector<Sketch>(5000, menu("A"))));
  const Folder folder;
  ASSERT_EQ(::mkfifo(folder.file().c_str(), 0600), 0);
  std::thread writer([&] {
    const int fd = ::open(folder.file().c_str(), O_WRONLY);
    std::span left(reinterpret_cast<const char*>(image.bytes().data()), image.size());
    for (const std::size_t little : {5U, 15U}) {
      EXPECT_EQ(::write(fd, left.data(), little), static_cast<ssize_t>(little));
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      left = left.subspan(little);
    }
    writeAll(fd, left);
    ::close(fd);
  });
  std::string error;
  const auto file = MappedFile::open(folder.file(), error);
  writer.join();
  ASSERT_TRUE(file.has_value()) << error;
  EXPECT_EQ(file->bytes().size(), image.size());
}

TEST(MappedFile, ReadsLittleOfAPipeThatIsNoInventory) {
  const std::string text(1000000, 'x');
  std::size_t taken = 0;
  EXPECT_EQ(throughPipe(text, taken), text.substr(0, 48));
  EXPECT_LT(taken, text.size());
}

TEST(MappedFile, ReadsLittleMoreThanThePipeAnnounces) {
  const InventoryImage image(Layout::kTwoTable, sampleTree());
  const std::string bytes(image.bytes().begin(), image.bytes().end());
  std::size_t taken = 0;
  const std::string read = throughPipe(bytes + std::string(1000000, 'x'), taken);
  EXPECT_GT(read.size(), bytes.size());
  EXPECT_LT(read.size(), bytes.size() + 100000);
}

TEST(MappedFile, AnEndlessDeviceIsNoInventory) {
  std::string error;
  const auto file = MappedFile::open("/dev/zero", error);
  ASSERT_TRUE(file.has_value()) << error;
  EXPECT_EQ(file->bytes().size(), 48U);
}

}  // namespace
}  // namespace Orvane
