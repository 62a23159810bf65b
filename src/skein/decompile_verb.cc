#include <memory>

#include "skein/console.h"
#include "skein/decompile.h"
#include "skein/exit_status.h"
#include "skein/output_file.h"
#include "skein/verb.h"

namespace Orvane {
namespace {

enum Key : int { kLimit = 1 };

struct Input : VerbInput {
  std::string output = "-";
  bool dryRun = false;
  DecompileOptions options;
};

const argp_option kTable[] = {
    {"output", 'o', "FILE", 0, "Write the XML to FILE instead of standard output", 0},
    {"dry-run", 'n', nullptr, 0, "Write no XML, only say what it cannot carry", 0},
    {"limit", kLimit, "N", 0, "Print at most N findings of what is damaged or lost", 0},
    {},
};

error_t parse(int key, char* arg, argp_state* state) {
  auto* input = static_cast<Input*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      initChildren(state, *input, 1);
      return 0;
    case 'o':
      input->output = arg;
      return 0;
    case 'n':
      input->dryRun = true;
      return 0;
    case kLimit:
      input->options.limit = parseNumber(state, "--limit", arg);
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
const struct argp kArgp = {kTable, parse, "FILE", nullptr, kChildren, nullptr, nullptr};

int decompileTo(const InventoryJob& job, const Input& input, OutputBuffer& xml) {
  const int status = decompileInventory(job, input.options, xml);
  if (status == kStatusNo) {
    job.printing.diagnostics.error(job.file,
                                   "the XML does not make the same file again, see above");
  }
  return status;
}

int decompileToFile(const InventoryJob& job, const Input& input) {
  std::string error;
  const auto file = OutputFile::create(input.output, std::string(job.file), error);
  if (file) {
    OutputBuffer xml(file->sink());
    const int status = decompileTo(job, input, xml);
    xml.flush();
    if (file->commit(error)) return status;
  }
  job.printing.diagnostics.error(input.output, error);
  return kStatusTrouble;
}

}  // namespace

int runDecompile(int argc, char** argv) {
  Input input;
  input.help = {kDecompilePurpose,
                "  skein decompile player.inv -o menu.xml\n"
                "  skein decompile player.inv | less\n"
                "  skein decompile --dry-run --limit=10 player.inv\n"};
  argp_parse(&kArgp, argc, argv, ARGP_NO_HELP, nullptr, &input);
  Console console(input.common);
  return console.finish(
      forEachInventory(input.common.files, {}, console.messages(), [&](const InventoryJob& job) {
        if (input.dryRun) {
          NullSink sink;
          OutputBuffer nowhere(sink);
          return decompileTo(job, input, nowhere);
        }
        if (input.output != "-") return decompileToFile(job, input);
        return decompileTo(job, input, console.printing().out);
      }));
}

}  // namespace Orvane
