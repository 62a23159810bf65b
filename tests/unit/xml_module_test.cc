#include "cli/xml_module.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace Orvane::test {
namespace {

[[noreturn]] void loadWhileNoFileCanBeOpened() {
  rlimit usual;
  getrlimit(RLIMIT_NOFILE, &usual);
  rlimit none = usual;
  none.rlim_cur = 0;
  setrlimit(RLIMIT_NOFILE, &none);
  try {
    loadXmlReader();
  } catch (const std::runtime_error& error) {
    setrlimit(RLIMIT_NOFILE, &usual);  // for the sanitizers, which open files to look at the error
    std::cerr << error.what();
    std::_Exit(3);
  }
  std::_Exit(0);
}

TEST(XmlModuleDeathTest, TellsWhyItCannotBeLoaded) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that hasn't loaded it before
  EXPECT_EXIT(loadWhileNoFileCanBeOpened(), ::testing::ExitedWithCode(3),
              "^cannot load the XML reader: .*Too many open files");
}

}  // namespace
}  // namespace Orvane::test
