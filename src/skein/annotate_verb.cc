#include "skein/annotate.h"
#include "skein/console.h"
#include "skein/verb.h"

namespace Orvane {
namespace {

error_t parse(int key, char* arg, argp_state* state) {
  auto* input = static_cast<VerbInput*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      initChildren(state, *input, 1);
      return 0;
    case ARGP_KEY_ARG:
      addFile(input->common, arg);
      return 0;
    case ARGP_KEY_END:
      if (input->common.files.size() != 1) argp_error(state, "exactly one file is needed");
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

const argp_child kChildren[] = {{&kCommonArgp, 0, nullptr, 0}, {}};
const struct argp kArgp = {nullptr, parse, "FILE", nullptr, kChildren, nullptr, nullptr};

}  // namespace

int runAnnotate(int argc, char** argv) {
  VerbInput input;
  input.help = {kAnnotatePurpose,
                "  skein annotate player.inv | less\n"
                "  skein annotate player.inv > player.txt\n"
                "  diff <(skein annotate old.inv) <(skein annotate new.inv)\n"};
  argp_parse(&kArgp, argc, argv, ARGP_NO_HELP, nullptr, &input);
  Console console(input.common);
  return console.finish(
      forEachInventory(input.common.files, {}, console.printing(), annotateInventory));
}

}  // namespace Orvane
