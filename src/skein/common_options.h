// The options that verbs share, with the same meaning everywhere.
#pragma once

#include <argp.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

enum class Format : std::uint8_t { kText, kJson, kJsonLines };
enum class ColorChoice : std::uint8_t { kAuto, kAlways, kNever };

struct CommonOptions {
  Format format = Format::kText;
  ColorChoice color = ColorChoice::kAuto;
  bool quiet = false;    // no warnings
  bool verbose = false;  // say also what is well
  std::vector<std::string> files;
};

// What a verb's --help begins with.
struct VerbHelp {
  const char* purpose;   // one line
  const char* examples;  // three lines
};

// What the parsers below find in argp_state's input: each verb's own options begin with these.
struct VerbInput {
  CommonOptions common;
  VerbHelp help;
};

// Children for a verb's argp. The first takes --color, -q, -v, --files-from, --help, --usage,
// --version; the second --format and --json. Files themselves are for the verb's own parser, by
// addFile(). Parse with ARGP_NO_HELP.
extern const struct argp kCommonArgp;
extern const struct argp kFormatArgp;

// The ARGP_KEY_INIT duty of a verb's parser: hands the input on to `count` children.
void initChildren(argp_state* state, VerbInput& input, std::size_t count);

// Appends `word` to the files, or the files that "@LIST" names ("@-": standard input). Ends the run
// if LIST is unreadable.
void addFile(CommonOptions& options, std::string_view word);

// Reads `text` as a decimal number of at most 32 bits; anything else ends the run with a usage
// error that names `option`.
std::uint32_t parseNumber(argp_state* state, const char* option, const char* text);

// Hands on what was printed to stdout. False if some of it, now or before, got lost.
bool textWritten();

// Prints a help text that begins with purpose and examples, or the version, and ends the run.
[[noreturn]] void printHelp(argp_state* state, const VerbHelp& help);
[[noreturn]] void printVersion();

}  // namespace Orvane
