// Feeds arbitrary bytes to every verb of the companion program.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include "all_verbs.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string contradictions = Orvane::contradictionsIn({data, size});
  if (!contradictions.empty()) {
    std::cerr << contradictions << std::endl;
    std::abort();
  }
  return 0;
}
