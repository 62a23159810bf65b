#include "skein/console.h"
#include "skein/stats.h"
#include "skein/verb.h"

namespace Orvane {
namespace {

error_t parse(int key, char* arg, argp_state* state) {
  auto* input = static_cast<VerbInput*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      initChildren(state, *input, 2);
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
const struct argp kArgp = {nullptr, parse, "FILE...", nullptr, kChildren, nullptr, nullptr};

}  // namespace

int runStats(int argc, char** argv) {
  VerbInput input;
  input.help = {kStatsPurpose,
                "  skein stats player.inv\n"
                "  skein stats old.inv new.inv\n"
                "  skein stats --json player.inv\n"};
  argp_parse(&kArgp, argc, argv, ARGP_NO_HELP, nullptr, &input);
  Console console(input.common);
  return console.finish(
      forEachInventory(input.common.files, kStatsSchema, console.printing(), printStats));
}

}  // namespace Orvane
