// The ways to memory and to threads, with the fault in front of those taken since main() began.
// What a library does while it is loaded doesn't count.

#include <dlfcn.h>
#include <pthread.h>
#include <sys/mman.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <new>

#include "fault.h"
#include "real_function.h"

using Orvane::test::Effect;
using Orvane::test::Fault;
using Orvane::test::realFunction;

using Main = int (*)(int, char**, char**);
using Hook = void (*)();

// The function that calls main(). Its own name is none for a program to use.
extern "C" int startProgram(Main, int, char**, Main, Hook, Hook,
                            void*) __asm__("__libc_start_main");

namespace {

std::atomic<bool> isInMain = false;
thread_local bool isUncounted = false;
Main programsMain = nullptr;

class Uncounted {
 public:
  Uncounted() { isUncounted = true; }
  Uncounted(const Uncounted&) = delete;
  Uncounted& operator=(const Uncounted&) = delete;
  ~Uncounted() { isUncounted = before_; }

 private:
  const bool before_ = isUncounted;
};

int countedMain(int argc, char** argv, char** environment) {
  isInMain = true;
  return programsMain(argc, argv, environment);
}

bool isRefused(const char* call) {
  return isInMain && !isUncounted && Fault::get().befalls(call) &&
         Fault::get().next() == Effect::kError;
}

// One of the operators may go through another, but counts once.
template <typename Function, typename... Arguments>
void* allocate(Function* real, Arguments... arguments) {
  if (isRefused("new")) throw std::bad_alloc();
  const Uncounted within;
  return real(arguments...);
}

}  // namespace

int startProgram(Main main, int argc, char** argv, Main init, Hook fini, Hook loaderFini,
                 void* stackEnd) {
  const auto real =
      realFunction<int(Main, int, char**, Main, Hook, Hook, void*)>("__libc_start_main");
  programsMain = main;
  return real(countedMain, argc, argv, init, fini, loaderFini, stackEnd);
}

extern "C" {

void* dlopen(const char* file, int mode) noexcept {
  static const auto real = realFunction<void*(const char*, int)>("dlopen");
  const Uncounted loading;
  return real(file, mode);
}

void* mmap(void* address, std::size_t length, int protection, int flags, int file,
           off_t offset) noexcept {
  static const auto real = realFunction<void*(void*, std::size_t, int, int, int, off_t)>("mmap");
  if (file == -1 && isRefused("mmap")) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  return real(address, length, protection, flags, file, offset);
}

// Only as the program calls it, with a place to move to, which a refusal may leave without memory.
void* mremap(void* address, std::size_t length, std::size_t newLength, int flags, ...) noexcept {
  static const auto real =
      realFunction<void*(void*, std::size_t, std::size_t, int, void*)>("mremap");
  std::va_list more;
  va_start(more, flags);
  void* const place = va_arg(more, void*);
  va_end(more);
  if (isRefused("mmap")) {
    ::munmap(place, newLength);
    errno = ENOMEM;
    return MAP_FAILED;
  }
  return real(address, length, newLength, flags, place);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) noexcept {
  static const auto real =
      realFunction<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>(
          "pthread_create");
  return isRefused("thread") ? EAGAIN : real(thread, attributes, start, argument);
}

}  // extern "C"

void* operator new(std::size_t size) {
  static const auto real = realFunction<void*(std::size_t)>("_Znwm");
  return allocate(real, size);
}

void* operator new[](std::size_t size) {
  static const auto real = realFunction<void*(std::size_t)>("_Znam");
  return allocate(real, size);
}

void* operator new(std::size_t size, std::align_val_t alignment) {
  static const auto real =
      realFunction<void*(std::size_t, std::align_val_t)>("_ZnwmSt11align_val_t");
  return allocate(real, size, alignment);
}

void* operator new[](std::size_t size, std::align_val_t alignment) {
  static const auto real =
      realFunction<void*(std::size_t, std::align_val_t)>("_ZnamSt11align_val_t");
  return allocate(real, size, alignment);
}
