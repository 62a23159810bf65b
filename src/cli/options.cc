#include "cli/options.h"

#include <argp.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

#include "inventory/decimal_number.h"

extern "C" {
const char* argp_program_version = "skeinmake";
const char* argp_program_bug_address = "<bugs@skeinmake.example>";
}

namespace Orvane {

namespace {

// --output's text speaks of standard output although an output file is mandatory. The help text is
// parsed by existing scripts and stays as it is.
constexpr argp_option kOptions[] = {
    {"tables", 'T', "NUMTABLES", 0, "Number of tables for the output", 0},
    {"inputMode", 'M', "MODE", 0, "INVENTORY or XML", 0},
    {"tracksFile", 't', "TRACKSFILE", 0, "File containing list of INVENTORY Tracks", 0},
    {"playlistsFile", 'p', "PLFILE", 0, "File containing list of INVENTORY Playlists", 0},
    {"xmlFile", 'x', "XMLFILE", 0, "File containing inventory tree in XML format", 0},
    {"output", 'o', "OUTFILE", 0, "Output inventory to FILE instead of standard output", 0},
    {"rootName", 'r', "ROOTNAME", 0, "The name of the root menu", 0},
    {"tryAndBuyPartition", 'b', "T&BPARTID", 0,
     "Add a Try and Buy partition with id T&BPARTID [only in INVENTORY mode]", 0},
    {}};

// Bad values are told on standard output, unlike everything else that ends a run: scripts look for
// them there.
void rejectValue(const char* complaint, const char* value, const argp_state* state) {
  std::cout << "INVALID OPTION: " << complaint << ": [" << value << "]" << std::endl;
  argp_usage(state);
}

error_t parseKey(int key, char* arg, argp_state* state) {
  Options& options = *static_cast<Options*>(state->input);
  switch (key) {
    case 'T':
      options.tables = parseDecimal(arg);
      if (options.tables != 1 && options.tables != 2) {
        rejectValue("Invalid number of tables specified", arg, state);
      }
      return 0;
    case 'M':
      if (std::string_view(arg) == "XML") {
        options.xmlMode = true;
      } else if (std::string_view(arg) == "INVENTORY") {
        options.xmlMode = false;
      } else {
        rejectValue("Invalid inputMode specified", arg, state);
      }
      return 0;
    case 't':
      options.tracksFile = arg;
      return 0;
    case 'p':
      options.playlistsFile = arg;
      return 0;
    case 'x':
      options.xmlFile = arg;
      return 0;
    case 'o':
      options.outputFile = arg;
      return 0;
    case 'r':
      options.rootName = arg;
      return 0;
    case 'b':
      options.tryAndBuy = true;
      options.tryAndBuyPartitionId = parseDecimal(arg);
      return 0;
    case ARGP_KEY_ARG:
      std::cout << "IGNORED: [" << arg << "]" << std::endl;
      return 0;
    case ARGP_KEY_END:
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

constexpr argp kArgp = {kOptions, parseKey, "",     "skeinmake -- build binary inventory structure",
                        nullptr,  nullptr,  nullptr};

[[noreturn]] void endForMissing(const char* what) {
  std::cerr << what << ". Try running with --help for run options" << std::endl << std::endl;
  std::exit(EXIT_FAILURE);
}

}  // namespace

void parseOptions(int argc, char** argv, Options& options) {
  argp_parse(&kArgp, argc, argv, 0, nullptr, &options);
}

void requireFiles(const Options& options) {
  if (options.outputFile == nullptr) endForMissing("output file not specified");
  if (options.xmlMode && options.xmlFile == nullptr) {
    endForMissing("xmlFile input file not specified [while running in XML mode]");
  }
  if (!options.xmlMode && (options.tracksFile == nullptr || options.playlistsFile == nullptr)) {
    endForMissing(
        "tracksFile or playlistsFile input files not specified [while running in INVENTORY mode]");
  }
}

}  // namespace Orvane
