#include "cli/terminate_handler.h"

#include <cstdlib>
#include <exception>
#include <iostream>

#include "errors/ov_error.h"
#include "errors/printable.h"

namespace Orvane {

namespace {

const char* reportedFile = "";

[[noreturn]] void reportAndAbort() {
  std::cout.flush();  // abort() would drop what the run has said so far
  if (const std::exception_ptr error = std::current_exception()) {
    try {
      std::rethrow_exception(error);
    } catch (const OVError& e) {
      std::cerr << "skeinmake: " << e.getMessage() << ": " << printable(reportedFile) << std::endl;
    } catch (const std::exception& e) {
      std::cerr << "skeinmake: " << e.what() << ": " << printable(reportedFile) << std::endl;
    } catch (...) {
      std::cerr << "skeinmake: unknown error: " << printable(reportedFile) << std::endl;
    }
  }
  std::abort();
}

}  // namespace

void reportUncaughtErrors(const char* outputFile) {
  reportedFile = outputFile;
  std::set_terminate(reportAndAbort);
}

}  // namespace Orvane
