#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace Orvane {

// Reads a text file line by line, in large blocks. A line ends at a line feed, which isn't part of
// it; nothing else is trimmed, and zero bytes are bytes like others.
class LineReader {
 public:
  // Opens the file; see isOpen().
  explicit LineReader(const char* path);
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  ~LineReader();

  // False when there is no such file, it may not be read, or it is a directory.
  bool isOpen() const { return descriptor_ != -1; }

  // The next line; good until the next call. At the end of the file, what follows the last line
  // feed, which may be nothing; after that, empty lines for ever. Throws LineReadError when the
  // file can't be read on.
  std::string_view next();

  // As many of the next lines as fit into `lines` and are at hand without a further read, at least
  // one; all are good until the next call. Returns how many.
  std::size_t nextLines(std::span<std::string_view> lines);

  // Whether the last line had no line feed, so that nothing follows it.
  bool atEnd() const { return atEnd_; }

  // About how many more lines there are, going by those read so far; 0 if the file doesn't tell its
  // size. A guess, and never more than one for every 16 bytes that the file has on the disk.
  std::size_t expectedLines() const;

  // The number of the last line, counted from 1.
  std::size_t lineNumber() const { return lineNumber_; }

 private:
  bool fill();
  bool takeLine(std::string_view& line, std::size_t searched);

  const char* path_;
  int descriptor_;
  std::unique_ptr<char[]> block_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;  // the unread part of the block
  std::size_t end_ = 0;
  std::size_t bytesRead_ = 0;
  bool atEnd_ = false;
  std::size_t lineNumber_ = 0;
};

}  // namespace Orvane
