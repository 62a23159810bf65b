#include "cli/xml_module.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace Orvane::test {
namespace {

TEST(XmlModuleDeathTest, TellsWhyItCannotBeLoaded) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that hasn't loaded it before
  EXPECT_EXIT(
      {
        rlimit usual;
        getrlimit(RLIMIT_NOFILE, &usual);
        const rlimit nothing = {0, usual.rlim_max};
        setrlimit(RLIMIT_NOFILE, &nothing);
        try {
          loadXmlReader();
        } catch (const std::runtime_error& error) {
          setrlimit(RLIMIT_NOFILE, &usual);  // for the sanitizers, which open files to look at it
          std::cerr << error.what();
          std::_Exit(3);
        }
      },
      ::testing::ExitedWithCode(3), "^cannot load the XML reader: .*Too many open files");
}

}  // namespace
}  // namespace Orvane::test
