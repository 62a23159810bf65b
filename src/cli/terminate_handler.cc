#include "cli/terminate_handler.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>

#include "errors/ov_error.h"
#include "errors/printable.h"

namespace Orvane {

namespace {

// As it is shown. Made in time: there may be no memory left when it's needed.
std::string reportedFile;

void tell(std::string_view message) {
  std::cerr << "skeinmake: " << message << ": " << reportedFile << std::endl;
}

void tellError(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const OVError& e) {
    tell(e.getMessage());
  } catch (const std::exception& e) {
    tell(e.what());
  } catch (...) {
    tell("unknown error");
  }
}

[[noreturn]] void reportAndAbort() {
  std::cout.flush();  // abort() would drop what the run has said so far
  if (const std::exception_ptr error = std::current_exception()) {
    try {
      tellError(error);
    } catch (const std::bad_alloc& e) {  // no memory for the message's copy
      tell(e.what());
    }
  }
  std::abort();
}

}  // namespace

void reportUncaughtErrors(const char* outputFile) {
  std::set_terminate(reportAndAbort);
  reportedFile = printable(outputFile);
}

}  // namespace Orvane
