#include "cli/options.h"
#include "cli/run.h"
#include "cli/terminate_handler.h"
#include "tree/huge_pages.h"

int main(int argc, char** argv) {
  Orvane::keepFreedMemory();
  Orvane::Options options;
  Orvane::parseOptions(argc, argv, options);
  Orvane::requireFiles(options);
  Orvane::reportUncaughtErrors(options.outputFile);
  Orvane::run(options);
  return 0;
}
