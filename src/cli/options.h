#pragma once

#include <cstdint>

namespace Orvane {

// What the command line asks for. The texts point into the argument vector and aren't copied;
// nullptr where an option wasn't given.
struct Options {
  std::int32_t tables = 2;
  bool xmlMode = true;
  const char* tracksFile = nullptr;
  const char* playlistsFile = nullptr;
  const char* xmlFile = nullptr;
  const char* outputFile = nullptr;
  const char* rootName = nullptr;
  bool tryAndBuy = false;
  std::int32_t tryAndBuyPartitionId = 0;
};

// Fills `options` from the command line; of a repeated option the last one counts. Ends the process
// for --help, --usage and --version (status 0), and for an unknown option or a bad value (argp's
// usage status, 64).
void parseOptions(int argc, char** argv, Options& options);

// Ends the process with status 1 and a message on standard error unless the output file and the
// input files of the chosen mode were named.
void requireFiles(const Options& options);

}  // namespace Orvane
