#pragma once

#include <string>

namespace bench {

// A file in memory that has a path as long as it lives, so that reading it measures no disk.
class MemoryFile {
 public:
  // An empty file. Throws std::system_error when the system has none to give.
  MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  // Opening it gives a file position of its own.
  const std::string& path() const { return path_; }

 private:
  int descriptor_;
  std::string path_;
};

}  // namespace bench
