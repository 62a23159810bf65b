#include "fault.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>

#include "real_function.h"

namespace Orvane::test {

namespace {

const char* setting(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

int openReally(const char* path, int flags) {
  static const auto real = realFunction<int(const char*, int, ...)>("open");
  const int file = real(path, flags);
  if (file == -1) ::_exit(125);
  return file;
}

}  // namespace

Fault& Fault::get() {
  static Fault fault;
  return fault;
}

Fault::Fault()
    : call_(setting("FAULT_CALL")),
      path_(setting("FAULT_PATH")),
      effect_(setting("FAULT_EFFECT")),
      nth_(std::strtoull(setting("FAULT_NTH"), nullptr, 10)),
      onward_(setting("FAULT_ONWARD") == std::string_view("1")),
      value_(static_cast<int>(std::strtol(setting("FAULT_VALUE"), nullptr, 10))) {
  const char* const countersPath = setting("FAULT_COUNTERS");
  if (*countersPath == '\0') return;
  static const auto realMmap =
      realFunction<void*(void*, std::size_t, int, int, int, off_t)>("mmap");
  const int file = openReally(countersPath, O_RDWR | O_CLOEXEC);
  void* const shared =
      realMmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (shared == MAP_FAILED) ::_exit(125);
  counters_ = static_cast<Counters*>(shared);
  static const auto realClose = realFunction<int(int)>("close");
  realClose(file);
}

Effect Fault::next() {
  const std::uint64_t call = std::atomic_ref(counters_->calls).fetch_add(1) + 1;
  if (nth_ == 0 || call < nth_ || (call > nth_ && !onward_)) return Effect::kNone;
  ++std::atomic_ref(counters_->faults);
  if (effect_ == "error") return Effect::kError;
  if (effect_ == "signal") {
    std::raise(value_);
    return Effect::kNone;
  }
  if (effect_ == "append") {
    append();
    return Effect::kNone;
  }
  return Effect::kShort;
}

std::size_t Fault::shortened(std::size_t length) const {
  if (length <= 1) return length;
  if (effect_ == "one") return 1;
  return effect_ == "most" ? length - 1 : length / 2;
}

void Fault::append() const {
  static const auto realRead = realFunction<ssize_t(int, void*, std::size_t)>("read");
  static const auto realWrite = realFunction<ssize_t(int, const void*, std::size_t)>("write");
  static const auto realClose = realFunction<int(int)>("close");
  const int source = openReally(setting("FAULT_SOURCE"), O_RDONLY | O_CLOEXEC);
  const int target = openReally(path_.data(), O_WRONLY | O_APPEND | O_CLOEXEC);
  std::array<char, 4096> block;
  while (true) {
    const ssize_t got = realRead(source, block.data(), block.size());
    if (got == 0) break;
    if (got < 0 || realWrite(target, block.data(), static_cast<std::size_t>(got)) != got) {
      ::_exit(125);
    }
  }
  realClose(source);
  realClose(target);
}

}  // namespace Orvane::test
