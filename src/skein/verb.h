#pragma once

#include <string_view>

namespace Orvane {

// One verb of the program. `run` takes a command line whose first word is "skein VERB" and returns
// the exit status; a wrong command line, --help, --usage and --version end the process.
struct Verb {
  std::string_view name;
  const char* purpose;
  int (*run)(int argc, char** argv);
};

int runDump(int argc, char** argv);
int runCheck(int argc, char** argv);
int runAnnotate(int argc, char** argv);
int runDecompile(int argc, char** argv);
int runDiff(int argc, char** argv);
int runStats(int argc, char** argv);

inline constexpr const char* kDumpPurpose = "print the menu tree of inventories";
inline constexpr const char* kCheckPurpose = "prove inventories sound, or list what is wrong";
inline constexpr const char* kAnnotatePurpose = "explain each byte of an inventory";
inline constexpr const char* kDecompilePurpose = "turn an inventory back into an XML menu tree";
inline constexpr const char* kDiffPurpose = "compare the menu trees of two inventories";
inline constexpr const char* kStatsPurpose = "count what inventories hold";

}  // namespace Orvane
