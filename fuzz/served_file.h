#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvane::fuzz {

// A file in memory for code that takes paths: it has one as long as the object lives, and none on
// any disk.
class ServedFile {
 public:
  // May be read and written, any number of times.
  static ServedFile whole(std::string_view content);

  // May be read once, to its end, by one reader; no read gives more than `piece` bytes (more only
  // of contents too long to wait in that many pieces), so that what a reader puts together from
  // several reads is tried with contents of any size.
  static ServedFile inPieces(std::string_view content, std::size_t piece);

  ServedFile(ServedFile&& other) noexcept;
  ServedFile& operator=(ServedFile&& other) = delete;
  ~ServedFile();

  const char* path() const { return path_.c_str(); }

  // What is in the file now; only of one made by whole().
  std::string content() const;

 private:
  explicit ServedFile(int descriptor);

  int descriptor_;
  std::string path_;
};

}  // namespace Orvane::fuzz
