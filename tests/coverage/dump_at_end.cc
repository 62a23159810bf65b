// Linked into every program of a coverage build: one that aborts, or leaves by _exit, would lose
// its counters.
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>

extern "C" void __gcov_dump();

namespace {

using Handler = void (*)(int);

Handler previous = SIG_DFL;

// A program and each module that it loads have counters and a handler of their own.
void dumpCounters(int signal) {
  __gcov_dump();
  if (previous != SIG_DFL && previous != SIG_IGN) previous(signal);
}

class DumpAtAbort {
 public:
  DumpAtAbort() { previous = std::signal(SIGABRT, dumpCounters); }
  DumpAtAbort(const DumpAtAbort&) = delete;
  DumpAtAbort& operator=(const DumpAtAbort&) = delete;
  ~DumpAtAbort() { std::signal(SIGABRT, previous); }
};

const DumpAtAbort kDumpAtAbort;

}  // namespace

// Stands in for the C library's.
extern "C" [[noreturn]] void _exit(int status) {
  __gcov_dump();
  while (true) ::syscall(SYS_exit_group, status);
}
