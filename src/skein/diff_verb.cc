#include <optional>

#include "reader/mapped_file.h"
#include "skein/console.h"
#include "skein/diff.h"
#include "skein/exit_status.h"
#include "skein/verb.h"

namespace Orvane {
namespace {

enum Key : int { kStat = 1 };

struct Input : VerbInput {
  DiffOptions options;
};

const argp_option kTable[] = {
    {"stat", kStat, nullptr, 0, "Print only how many differences of each kind there are", 0},
    {},
};

error_t parse(int key, char* arg, argp_state* state) {
  auto* input = static_cast<Input*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      initChildren(state, *input, 2);
      return 0;
    case kStat:
      input->options.statOnly = true;
      return 0;
    case ARGP_KEY_ARG:
      addFile(input->common, arg);
      return 0;
    case ARGP_KEY_END:
      if (input->common.files.size() != 2) argp_error(state, "exactly two files are needed");
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

const argp_child kChildren[] = {{&kCommonArgp, 0, nullptr, 0}, {&kFormatArgp, 0, nullptr, 0}, {}};
const struct argp kArgp = {kTable, parse, "A B", nullptr, kChildren, nullptr, nullptr};

// An open inventory and the bytes under it.
struct Opened {
  MappedFile file;
  InventoryView view;
};

std::optional<Opened> openInventory(const std::string& name, Diagnostics& diagnostics) {
  std::string reason;
  auto file = MappedFile::open(name, reason);
  if (file) {
    // The bytes stay where they are when the file object moves on.
    const auto view = InventoryView::open(file->bytes(), reason);
    if (view) return Opened{*std::move(file), *view};
  }
  diagnostics.error(name, reason);
  return std::nullopt;
}

int diffFiles(const Input& input, Printing& printing) {
  const auto first = openInventory(input.common.files[0], printing.diagnostics);
  const auto second = openInventory(input.common.files[1], printing.diagnostics);
  if (!first || !second) return kStatusTrouble;
  return diffInventories({first->view, input.common.files[0]},
                         {second->view, input.common.files[1]}, input.options, printing);
}

}  // namespace

int runDiff(int argc, char** argv) {
  Input input;
  input.help = {kDiffPurpose,
                "  skein diff old.inv new.inv\n"
                "  skein diff --stat old.inv new.inv\n"
                "  skein diff --json old.inv new.inv\n"};
  argp_parse(&kArgp, argc, argv, ARGP_NO_HELP, nullptr, &input);
  Console console(input.common);
  return console.finish(diffFiles(input, console.printing()));
}

}  // namespace Orvane
