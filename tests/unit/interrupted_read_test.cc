#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "interruptions.h"
#include "inventory/line_reader.h"
#include "test_support.h"

namespace Orvane::test {
namespace {

int pipeEnd = -1;

TEST(InterruptedRead, LineReaderReadsOn) {
  const TempDir dir;
  const std::string path = dir / "pipe";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  pipeEnd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_NE(pipeEnd, -1);
  LineReader reader(path.c_str());
  {
    const Interruptions interruptions(
        [] { static_cast<void>(::write(pipeEnd, "line\n", 5) == 5); });
    EXPECT_EQ(reader.next(), "line");
  }
  ::close(pipeEnd);
}

}  // namespace
}  // namespace Orvane::test
