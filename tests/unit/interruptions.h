#pragma once

#include <sys/time.h>

#include <csignal>

namespace Orvane::test {

// Interrupts the process's system calls with signals that do not restart them, every 2 ms while the
// object lives. At the 20th signal calls `action`, which has to keep to what a signal handler may
// do: a call that waits for it is sure to have been interrupted before. One object at a time.
class Interruptions {
 public:
  explicit Interruptions(void (*action)()) {
    count = 0;
    atLast = action;
    struct sigaction handler {};
    handler.sa_handler = onAlarm;
    ::sigaction(SIGALRM, &handler, &old_);
    const itimerval every{{0, 2000}, {0, 2000}};
    ::setitimer(ITIMER_REAL, &every, nullptr);
  }
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;
  ~Interruptions() {
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &old_, nullptr);
  }

 private:
  static void onAlarm(int /*signal*/) {
    count = count + 1;
    if (count == 20) atLast();
  }

  static inline volatile std::sig_atomic_t count = 0;
  static inline void (*atLast)() = nullptr;

  struct sigaction old_ {};
};

}  // namespace Orvane::test
