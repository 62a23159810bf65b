#pragma once

#include <cstring>
#include <fstream>
#include <istream>
#include <string>

namespace Orvane {

// A std::fstream that lets small pieces be put straight into its buffer: a million tracks' records
// go through it one by one.
class FileStream : public std::iostream {
 public:
  FileStream() : std::iostream(nullptr) { rdbuf(&file_); }

  // As those of std::fstream; `buffer`, of `size` bytes, must outlive the stream.
  void setBuffer(char* buffer, std::streamsize size) { file_.pubsetbuf(buffer, size); }
  bool isOpen() const { return file_.is_open(); }
  void open(const std::string& fileName, std::ios_base::openmode direction) {
    if (file_.open(fileName, direction) == nullptr) {
      setstate(std::ios_base::failbit);
    } else {
      clear();
    }
  }

  // Whether all that was written has reached the file.
  bool close() { return file_.close() != nullptr; }

  // Writes as write() does, but for the state: returns whether all was written.
  bool put(const char* data, std::streamsize size) {
    return file_.putIntoBuffer(data, size) || file_.sputn(data, size) == size;
  }

 private:
  struct File : std::filebuf {
    // False, with nothing done, when there isn't room.
    bool putIntoBuffer(const char* data, std::streamsize size) {
      if (size < 0 || epptr() - pptr() <= size) return false;
      std::memcpy(pptr(), data, static_cast<std::size_t>(size));
      pbump(static_cast<int>(size));
      return true;
    }
  };

  File file_;
};

}  // namespace Orvane
