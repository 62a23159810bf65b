#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "skein/check.h"
#include "skein/decompile.h"
#include "skein/diff.h"
#include "skein/dump.h"

namespace Orvane {

// What a verb did with bytes in memory that stand for a file named "a.inv".
struct VerbResult {
  int status = -1;
  std::string out;       // standard output
  std::string messages;  // standard error
};

using Bytes = std::span<const std::uint8_t>;

VerbResult dumpOf(Bytes bytes, Format format = Format::kText, const DumpOptions& options = {});
VerbResult checkOf(Bytes bytes, Format format = Format::kText,
                   const FindingPrinter::Options& options = {});
VerbResult annotateOf(Bytes bytes);
// The XML is in `out`, what it cannot carry in `messages`.
VerbResult decompileOf(Bytes bytes);
VerbResult statsOf(Bytes bytes, Format format = Format::kText);
// The second file is named "b.inv".
VerbResult diffOf(Bytes first, Bytes second, Format format = Format::kText,
                  const DiffOptions& options = {});

}  // namespace Orvane
