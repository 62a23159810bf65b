#include "skein/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace Orvane {
namespace {

std::string errorText(int number) {
  return std::generic_category().message(number);
}

constexpr mode_t kMode = 0666;

// The mask can only be read by setting it.
mode_t modeByMask() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return kMode & ~mask;
}

}  // namespace

std::unique_ptr<OutputFile> OutputFile::create(const std::string& name, const std::string& input,
                                               std::string& error) {
  // What is not there leaves all of its status 0, which is no file's.
  struct stat existing {};
  struct stat source {};
  const bool exists = ::stat(name.c_str(), &existing) == 0;
  static_cast<void>(input == "-" ? ::fstat(STDIN_FILENO, &source) : ::stat(input.c_str(), &source));
  if (S_ISREG(existing.st_mode) && existing.st_dev == source.st_dev &&
      existing.st_ino == source.st_ino) {
    error = "is the input, which would be overwritten";
    return nullptr;
  }
  std::string temporary;
  int fd = -1;
  if (exists && !S_ISREG(existing.st_mode)) {
    fd = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    temporary = name + ".XXXXXX";
    fd = ::mkstemp(temporary.data());
  }
  if (fd < 0) {
    error = errorText(errno);
    return nullptr;
  }
  std::unique_ptr<OutputFile> file(new OutputFile(fd, name, std::move(temporary)));
  if (!file->temporary_.empty() && ::fchmod(fd, modeByMask()) != 0) {
    error = errorText(errno);
    return nullptr;
  }
  return file;
}

OutputFile::OutputFile(int fd, std::string name, std::string temporary)
    : fd_(fd),
      name_(std::move(name)),
      temporary_(std::move(temporary)),
      sink_(std::make_unique<FdSink>(fd)) {}

OutputFile::~OutputFile() {
  if (fd_ >= 0) ::close(fd_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

bool OutputFile::commit(std::string& error) {
  int failure = sink_->error();
  if (::close(std::exchange(fd_, -1)) != 0 && failure == 0) failure = errno;
  if (failure == 0 && !temporary_.empty()) {
    if (std::rename(temporary_.c_str(), name_.c_str()) == 0) {
      temporary_.clear();
    } else {
      failure = errno;
    }
  }
  if (failure != 0) error = errorText(failure);
  return failure == 0;
}

}  // namespace Orvane
