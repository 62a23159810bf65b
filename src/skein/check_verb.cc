#include <array>

#include "reader/text_escape.h"
#include "skein/check.h"
#include "skein/console.h"
#include "skein/verb.h"

namespace Orvane {
namespace {

enum Key : int { kLimit = 1, kListRules };

struct Input : VerbInput {
  FindingPrinter::Options options;
  bool listRules = false;
};

const argp_option kTable[] = {
    {"warn", 'W', "WORD", 0,
     "no-RULE silences a rule, error=RULE makes it an error, RULE or no-error=RULE a warning; "
     "error "
     "makes all warnings errors",
     0},
    {"limit", kLimit, "N", 0, "Print at most N findings of each file", 0},
    {"list-rules", kListRules, nullptr, 0, "Print the rules and how they are taken", 0},
    {},
};

error_t parse(int key, char* arg, argp_state* state) {
  auto* input = static_cast<Input*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      initChildren(state, *input, 2);
      return 0;
    case 'W':
      if (!input->options.settings.apply(arg)) {
        argp_error(state, "-W %s: no such rule; --list-rules names them all", escaped(arg).c_str());
      }
      return 0;
    case kLimit:
      input->options.limit = parseNumber(state, "--limit", arg);
      return 0;
    case kListRules:
      input->listRules = true;
      return 0;
    case ARGP_KEY_ARG:
      addFile(input->common, arg);
      return 0;
    case ARGP_KEY_END:
      if (input->common.files.empty() && !input->listRules) argp_error(state, "no file given");
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

void listRules(const RuleSettings& settings, OutputBuffer& out) {
  constexpr std::size_t kNameWidth = 22;
  constexpr std::array<std::string_view, 3> kSeverityColumn = {"off      ", "warning  ",
                                                               "error    "};
  for (std::size_t i = 0; i < kRuleCount; ++i) {
    const Rule rule = static_cast<Rule>(i);
    const RuleInfo& info = infoOf(rule);
    out.put(info.name);
    out.fill(' ', kNameWidth - info.name.size());
    out.put(kSeverityColumn[static_cast<std::size_t>(settings.of(rule))]);
    out.put(info.summary);
    out.put('\n');
  }
}

const argp_child kChildren[] = {{&kCommonArgp, 0, nullptr, 0}, {&kFormatArgp, 0, nullptr, 0}, {}};
const struct argp kArgp = {kTable, parse, "FILE...", nullptr, kChildren, nullptr, nullptr};

}  // namespace

int runCheck(int argc, char** argv) {
  Input input;
  input.help = {kCheckPurpose,
                "  skein check player.inv && cp player.inv /media/player/\n"
                "  skein check -W error=name-utf8 --limit=20 *.inv\n"
                "  skein check --json player.inv\n"};
  argp_parse(&kArgp, argc, argv, ARGP_NO_HELP, nullptr, &input);
  Console console(input.common);
  if (input.listRules) {
    listRules(input.options.settings, console.printing().out);
    return console.finish(0);
  }
  return console.finish(forEachInventory(
      input.common.files, kCheckSchema, console.printing(),
      [&input](const InventoryJob& job) { return checkInventory(job, input.options); }));
}

}  // namespace Orvane
