#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "reader/text_escape.h"
#include "skein/common_options.h"
#include "skein/exit_status.h"
#include "skein/verb.h"

namespace Orvane {
namespace {

constexpr std::array kVerbs = {
    Verb{"dump", kDumpPurpose, runDump},
    Verb{"check", kCheckPurpose, runCheck},
    Verb{"annotate", kAnnotatePurpose, runAnnotate},
    Verb{"decompile", kDecompilePurpose, runDecompile},
    Verb{"diff", kDiffPurpose, runDiff},
    Verb{"stats", kStatsPurpose, runStats},
};

void printHelp() {
  std::puts(
      "skein: look inside the inventory of a media player, check it, turn it back\n\n"
      "Examples:\n"
      "  skein dump player.inv\n"
      "  skein check player.inv\n"
      "  skein decompile player.inv -o menu.xml\n\n"
      "Usage: skein VERB [OPTION...] FILE...\n");
  for (const Verb& verb : kVerbs) {
    std::printf("  %-11s%s\n", std::string(verb.name).c_str(), verb.purpose);
  }
  std::puts(
      "\nEach verb explains itself: skein VERB --help. \"-\" is standard input.\n"
      "Exit status: 0 done or sound, 1 faults or differences, 2 could not be done,\n"
      "64 wrong command line.");
}

int usageError(const std::string& what) {
  static_cast<void>(
      std::fprintf(stderr, "skein: %s\nTry `skein --help' for more information.\n", what.c_str()));
  return kStatusUsage;
}

// A mapped file that someone cuts off while it is being read cannot be read any further.
extern "C" void onBusError(int) {
  constexpr std::string_view kMessage = "skein: error: the file changed while it was being read\n";
  static_cast<void>(!::write(STDERR_FILENO, kMessage.data(), kMessage.size()));
  ::_exit(kStatusTrouble);
}

int dispatch(std::span<char*> words) {
  if (words.size() < 2) return usageError("no verb given");
  const std::string_view word = words[1];
  if (word == "--help" || word == "-?" || word == "--version" || word == "help") {
    if (word == "--version") printVersion();
    printHelp();
    return textWritten() ? kStatusYes : kStatusTrouble;
  }
  if (word == "--usage") {
    std::puts("Usage: skein VERB [OPTION...] FILE...");
    return textWritten() ? kStatusYes : kStatusTrouble;
  }
  for (const Verb& verb : kVerbs) {
    if (verb.name != word) continue;
    // The parser calls the program by its first word.
    std::string name = "skein " + std::string(verb.name);
    std::vector<char*> rest(words.begin() + 1, words.end());
    rest.front() = name.data();
    rest.push_back(nullptr);
    return verb.run(static_cast<int>(rest.size()) - 1, rest.data());
  }
  const bool isOption = word.size() > 1 && word.front() == '-';
  if (isOption) return usageError("unrecognized option '" + escaped(word) + "'");
  return usageError("no such verb: " + escaped(word));
}

}  // namespace
}  // namespace Orvane

int main(int argc, char** argv) {
  static_cast<void>(std::signal(SIGBUS, Orvane::onBusError));
  try {
    return Orvane::dispatch({argv, static_cast<std::size_t>(argc)});
  } catch (const std::bad_alloc&) {
    static_cast<void>(std::fputs("skein: error: out of memory\n", stderr));
    return Orvane::kStatusTrouble;
  }
}
