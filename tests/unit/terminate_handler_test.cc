#include "cli/terminate_handler.h"

#include <gtest/gtest.h>

#include <csignal>
#include <exception>
#include <functional>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>

#include "errors/ov_error.h"
#include "errors/ov_write_error.h"

namespace Orvane::test {
namespace {

class TerminateHandlerDeathTest : public ::testing::Test {
 protected:
  TerminateHandlerDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  // Lets what `action` throws go unhandled.
  [[noreturn]] static void endBy(const std::function<void()>& action) noexcept {
    reportUncaughtErrors("out\n.inv");
    action();
    std::terminate();
  }
};

TEST_F(TerminateHandlerDeathTest, TellsTheProgramsOwnErrors) {
  EXPECT_EXIT(endBy([] { throw OVWriteError("disk gone"); }), ::testing::KilledBySignal(SIGABRT),
              "^skeinmake: disk gone: out\\\\x0A\\.inv\n$");
}

TEST_F(TerminateHandlerDeathTest, TellsStandardExceptions) {
  EXPECT_EXIT(endBy([] { throw std::runtime_error("no memory"); }),
              ::testing::KilledBySignal(SIGABRT), "^skeinmake: no memory: out\\\\x0A\\.inv\n$");
}

TEST_F(TerminateHandlerDeathTest, TellsOfWhatHasNoMessage) {
  EXPECT_EXIT(endBy([] { throw 1; }), ::testing::KilledBySignal(SIGABRT),
              "^skeinmake: unknown error: out\\\\x0A\\.inv\n$");
}

TEST_F(TerminateHandlerDeathTest, TellsThatThereIsNoMemoryForAMessage) {
  class WithoutMemory : public OVError {
   public:
    std::string getMessage() const override { throw std::bad_alloc(); }
  };
  EXPECT_EXIT(endBy([] { throw WithoutMemory(); }), ::testing::KilledBySignal(SIGABRT),
              "^skeinmake: std::bad_alloc: out\\\\x0A\\.inv\n$");
}

TEST_F(TerminateHandlerDeathTest, IsSilentWithoutAnException) {
  EXPECT_EXIT(endBy([] {}), ::testing::KilledBySignal(SIGABRT), "^$");
}

// What ends up in the message's stream here would otherwise be lost with the buffer.
TEST_F(TerminateHandlerDeathTest, StandardOutputIsWrittenFirst) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        endBy([] {
          std::cout << "said before. ";
          throw OVWriteError("gone");
        });
      },
      ::testing::KilledBySignal(SIGABRT), "^said before\\. skeinmake: gone: ");
}

}  // namespace
}  // namespace Orvane::test
