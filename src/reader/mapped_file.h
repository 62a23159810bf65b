#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvane {

// The bytes of an inventory to be looked at: a regular file mapped into memory, anything else (a
// pipe, a terminal, "-" for standard input) read to its end. The bytes are good as long as this
// object; a mapped file must not shrink meanwhile, or the process gets SIGBUS.
class MappedFile {
 public:
  // Opens `name`. On failure returns nothing and puts the reason into `error`, such as "No such
  // file or directory". A stream is read no further than an inventory can go: a little behind what
  // its descriptors announce, and a few bytes if it is no inventory at all.
  static std::optional<MappedFile> open(const std::string& name, std::string& error);

  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&&) = delete;
  ~MappedFile();

  std::span<const std::uint8_t> bytes() const { return bytes_; }

 private:
  MappedFile() = default;
  bool map(int fd, std::size_t size);
  bool readAll(int fd);

  void* mapping_ = nullptr;
  std::size_t mappingSize_ = 0;
  std::vector<std::uint8_t> buffer_;
  std::span<const std::uint8_t> bytes_;
};

}  // namespace Orvane
