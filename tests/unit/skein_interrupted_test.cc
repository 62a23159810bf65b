// Reading and writing that signals interrupt.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>

#include "interruptions.h"
#include "reader/mapped_file.h"
#include "skein/byte_sink.h"
#include "skein/common_options.h"

namespace Orvane {
namespace {

using test::Interruptions;

int reading = -1;
int writing = -1;

// A pipe whose ends the handlers know, the reading one on standard input.
class Interrupted : public testing::Test {
 protected:
  Interrupted() : saved_(::dup(STDIN_FILENO)) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    reading = ends[0];
    writing = ends[1];
    EXPECT_EQ(::dup2(reading, STDIN_FILENO), STDIN_FILENO);
  }
  ~Interrupted() override {
    ::dup2(saved_, STDIN_FILENO);
    for (const int fd : {saved_, reading, writing}) ::close(fd);
  }

  static void writeAndClose() {
    static_cast<void>(::write(writing, "a.inv\n", 6) == 6);
    ::close(writing);
  }

 private:
  int saved_;
};

TEST_F(Interrupted, FileIsReadOn) {
  const Interruptions interruptions(writeAndClose);
  std::string error;
  const auto file = MappedFile::open("-", error);
  ASSERT_TRUE(file.has_value()) << error;
  EXPECT_EQ(file->bytes().size(), 6U);
}

TEST_F(Interrupted, ListIsReadOn) {
  const Interruptions interruptions(writeAndClose);
  CommonOptions options;
  addFile(options, "@-");
  EXPECT_EQ(options.files, std::vector<std::string>{"a.inv"});
}

TEST_F(Interrupted, OutputIsWrittenOn) {
  ::fcntl(writing, F_SETFL, O_NONBLOCK);
  std::array<char, 4096> piece{};
  while (::write(writing, piece.data(), piece.size()) > 0) {
  }
  ::fcntl(writing, F_SETFL, 0);
  // There is no room in the pipe until it is read from.
  const Interruptions interruptions([] {
    std::array<char, 65536> taken;
    static_cast<void>(::read(reading, taken.data(), taken.size()) > 0);
  });
  FdSink sink(writing);
  EXPECT_TRUE(sink.put("more"));
  EXPECT_EQ(sink.error(), 0);
}

}  // namespace
}  // namespace Orvane
