#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace bench {

// A text file that is being written. Throws std::ios_base::failure when that fails.
class TextFile {
 public:
  explicit TextFile(const std::string& path);
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile() = default;

  // Appends texts and decimal numbers, one after the other.
  template <typename... Parts>
  void add(const Parts&... parts) {
    (append(parts), ...);
    if (pending_.size() >= kBlockSize) flush();
  }

  // To be called last: what is pending then is lost otherwise.
  void close();

 private:
  static constexpr std::size_t kBlockSize = std::size_t{1} << 20;

  void append(std::string_view text) { pending_ += text; }
  void append(char c) { pending_ += c; }
  void append(std::uint32_t number);
  void flush();

  std::ofstream stream_;
  std::string pending_;
};

}  // namespace bench
