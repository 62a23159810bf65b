// The C library's file calls, with the fault in front of those on the file that it is meant for.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "fault.h"
#include "real_function.h"

namespace {

using Orvane::test::Effect;
using Orvane::test::Fault;
using Orvane::test::realFunction;

std::array<bool, 1024> watched{};  // the descriptors that are the file's

bool isWatched(int file) {
  return file >= 0 && static_cast<std::size_t>(file) < watched.size() &&
         watched[static_cast<std::size_t>(file)];
}

void watch(int file, bool on) {
  if (file < 0) return;
  if (static_cast<std::size_t>(file) >= watched.size()) ::_exit(125);
  watched[static_cast<std::size_t>(file)] = on;
}

Effect counted() {
  const Effect effect = Fault::get().next();
  if (effect == Effect::kError) errno = Fault::get().error();
  return effect;
}

Effect effectOn(const char* call, int file) {
  return isWatched(file) && Fault::get().befalls(call) ? counted() : Effect::kNone;
}

// From the file's position to its end.
std::size_t bytesLeft(int file) {
  static const auto realFstat = realFunction<int(int, struct stat*)>("fstat");
  struct stat status {};
  const off_t position = ::lseek(file, 0, SEEK_CUR);
  if (position == -1 || realFstat(file, &status) != 0) ::_exit(125);
  return position < status.st_size ? static_cast<std::size_t>(status.st_size - position) : 0;
}

bool refusesToOpen(const char* path) {
  return Fault::get().isFile(path) && Fault::get().befalls("open") && counted() == Effect::kError;
}

int openAs(const char* function, const char* path, int flags, mode_t mode) {
  const auto real = realFunction<int(const char*, int, ...)>(function);
  if (refusesToOpen(path)) return -1;
  const int file = real(path, flags, mode);
  watch(file, Fault::get().isFile(path));
  return file;
}

int openAtAs(const char* function, int folder, const char* path, int flags, mode_t mode) {
  const auto real = realFunction<int(int, const char*, int, ...)>(function);
  if (refusesToOpen(path)) return -1;
  const int file = real(folder, path, flags, mode);
  watch(file, Fault::get().isFile(path));
  return file;
}

std::FILE* openStreamAs(const char* function, const char* path, const char* mode) {
  const auto real = realFunction<std::FILE*(const char*, const char*)>(function);
  if (refusesToOpen(path)) return nullptr;
  std::FILE* const stream = real(path, mode);
  if (stream != nullptr) watch(::fileno(stream), Fault::get().isFile(path));
  return stream;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openAs("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openAs("open64", path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openAtAs("openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openAtAs("openat64", folder, path, flags, mode);
}

std::FILE* fopen(const char* path, const char* mode) {
  return openStreamAs("fopen", path, mode);
}

std::FILE* fopen64(const char* path, const char* mode) {
  return openStreamAs("fopen64", path, mode);
}

ssize_t read(int file, void* data, std::size_t length) {
  static const auto real = realFunction<ssize_t(int, void*, std::size_t)>("read");
  const Effect effect = effectOn("read", file);
  if (effect == Effect::kError) return -1;
  if (effect == Effect::kShort) length = Fault::get().shortened(std::min(length, bytesLeft(file)));
  return real(file, data, length);
}

ssize_t write(int file, const void* data, std::size_t length) {
  static const auto real = realFunction<ssize_t(int, const void*, std::size_t)>("write");
  const Effect effect = effectOn("write", file);
  if (effect == Effect::kError) return -1;
  return real(file, data, effect == Effect::kShort ? Fault::get().shortened(length) : length);
}

// Counts as a write.
ssize_t writev(int file, const iovec* pieces, int count) {
  static const auto real = realFunction<ssize_t(int, const iovec*, int)>("writev");
  const Effect effect = effectOn("write", file);
  if (effect == Effect::kError) return -1;
  if (effect == Effect::kNone) return real(file, pieces, count);

  std::array<iovec, 16> shortened{};
  if (static_cast<std::size_t>(count) > shortened.size()) ::_exit(125);
  std::copy_n(pieces, count, shortened.begin());
  std::size_t whole = 0;
  for (const iovec& piece : shortened) whole += piece.iov_len;
  std::size_t left = Fault::get().shortened(whole);
  for (iovec& piece : shortened) {
    piece.iov_len = std::min(piece.iov_len, left);
    left -= piece.iov_len;
  }
  return real(file, shortened.data(), count);
}

// As with the system's own, a file whose closing failed is closed.
int close(int file) {
  static const auto real = realFunction<int(int)>("close");
  const Effect effect = effectOn("close", file);
  const int error = errno;
  watch(file, false);
  const int result = real(file);
  if (effect != Effect::kError) return result;
  errno = error;
  return -1;
}

int fclose(std::FILE* stream) {
  static const auto real = realFunction<int(std::FILE*)>("fclose");
  const int file = ::fileno(stream);
  const Effect effect = effectOn("close", file);
  const int error = errno;
  watch(file, false);
  const int result = real(stream);
  if (effect != Effect::kError) return result;
  errno = error;
  return EOF;
}

int fstat(int file, struct stat* status) noexcept {
  static const auto real = realFunction<int(int, struct stat*)>("fstat");
  return effectOn("fstat", file) == Effect::kError ? -1 : real(file, status);
}

int fstat64(int file, struct stat64* status) noexcept {
  static const auto real = realFunction<int(int, struct stat64*)>("fstat64");
  return effectOn("fstat", file) == Effect::kError ? -1 : real(file, status);
}

}  // extern "C"
