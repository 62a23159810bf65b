#pragma once

#include <cstring>
#include <ext/stdio_filebuf.h>
#include <istream>
#include <string>

#include "io/write_behind.h"

namespace Orvane {

// A std::fstream that lets pieces be put straight into its buffer, however small they are. What
// put() takes reaches the file in whole buffers, but for the last, and of a large file the disk
// gets it while it is written (see WriteBehind).
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
      file_.behind = {};
      clear();
    }
  }

  // Whether all that was written has reached the file.
  bool close() { return file_.close() != nullptr; }

  // Writes as write() does, but for the state: returns whether all was written.
  bool put(const char* data, std::streamsize size) { return file_.put(data, size); }

 private:
  // The C++ library's own kind of std::filebuf: it tells its descriptor.
  struct File : __gnu_cxx::stdio_filebuf<char> {
    bool put(const char* data, std::streamsize size) {
      if (size < 0) return false;
      // What doesn't fit fills the buffer, whose last place is that of sputc(), which empties it.
      for (auto room = epptr() - pptr(); size > room; room = epptr() - pptr()) {
        take(data, room);
        if (traits_type::eq_int_type(sputc(data[room]), traits_type::eof())) return false;
        behind.follow(fd());
        data += room + 1;
        size -= room + 1;
      }
      take(data, size);
      return true;
    }

    void take(const char* data, std::streamsize size) {
      if (size == 0) return;  // there may be no buffer yet
      std::memcpy(pptr(), data, static_cast<std::size_t>(size));
      pbump(static_cast<int>(size));
    }

    WriteBehind behind;
  };

  File file_;
};

}  // namespace Orvane
