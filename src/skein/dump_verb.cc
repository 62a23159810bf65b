#include "reader/text_escape.h"
#include "skein/console.h"
#include "skein/dump.h"
#include "skein/verb.h"

namespace Orvane {
namespace {

enum Key : int { kPath = 1, kDepth, kRecord };

struct Input : VerbInput {
  DumpOptions options;
};

const argp_option kTable[] = {
    {"path", kPath, "PATH", 0,
     "Only the menu or track with this path, such as \"Artists/Some Artist\"; \\/ stands for a "
     "slash in a name",
     0},
    {"depth", kDepth, "N", 0, "Only N levels below each record shown first", 0},
    {"record", kRecord, "N", 0, "Start at record N instead of the root", 0},
    {},
};

error_t parse(int key, char* arg, argp_state* state) {
  auto* input = static_cast<Input*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      initChildren(state, *input, 2);
      return 0;
    case kPath: {
      auto path = splitPath(arg);
      if (!path)
        argp_error(state, "--path: a backslash in '%s' begins no escape", escaped(arg).c_str());
      input->options.path = *std::move(path);
      return 0;
    }
    case kDepth:
      input->options.depth = parseNumber(state, "--depth", arg);
      return 0;
    case kRecord:
      input->options.record = parseNumber(state, "--record", arg);
      return 0;
    case ARGP_KEY_ARG:
      addFile(input->common, arg);
      return 0;
    case ARGP_KEY_END:
      if (input->common.files.empty()) argp_error(state, "no file given");
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

const argp_child kChildren[] = {{&kCommonArgp, 0, nullptr, 0}, {&kFormatArgp, 0, nullptr, 0}, {}};
const struct argp kArgp = {kTable, parse, "FILE...", nullptr, kChildren, nullptr, nullptr};

}  // namespace

int runDump(int argc, char** argv) {
  Input input;
  input.help = {kDumpPurpose,
                "  skein dump player.inv\n"
                "  skein dump --path=\"Artists/Some Artist\" --depth=1 player.inv\n"
                "  skein dump --format=jsonl player.inv | grep '\"kind\":\"album\"'\n"};
  argp_parse(&kArgp, argc, argv, ARGP_NO_HELP, nullptr, &input);
  Console console(input.common);
  return console.finish(forEachInventory(
      input.common.files, kDumpSchema, console.printing(),
      [&input](const InventoryJob& job) { return dumpInventory(job, input.options); }));
}

}  // namespace Orvane
