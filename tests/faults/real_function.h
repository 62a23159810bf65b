#pragma once

#include <dlfcn.h>
#include <unistd.h>

namespace Orvane::test {

// The function that this library stands in front of. A process without it can't go on.
template <typename Function>
Function* realFunction(const char* name) {
  void* const symbol = ::dlsym(RTLD_NEXT, name);
  if (symbol == nullptr) ::_exit(125);
  return reinterpret_cast<Function*>(symbol);
}

}  // namespace Orvane::test
