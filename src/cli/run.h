#pragma once

#include "cli/options.h"

namespace Orvane {

// One run: builds the tree that the options ask for and writes it. The files that the mode needs
// must be named (requireFiles). Catches nothing: what a reader or writer throws passes through, and
// the output is then incomplete.
void run(const Options& options);

}  // namespace Orvane
