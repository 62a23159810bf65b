#include "text_file.h"

#include <array>
#include <charconv>

namespace bench {

TextFile::TextFile(const std::string& path) {
  stream_.exceptions(std::ios::failbit | std::ios::badbit);
  stream_.open(path, std::ios::binary | std::ios::trunc);
}

void TextFile::append(std::uint32_t number) {
  std::array<char, 10> digits;
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  pending_.append(digits.data(), result.ptr);
}

void TextFile::flush() {
  stream_.write(pending_.data(), static_cast<std::streamsize>(pending_.size()));
  pending_.clear();
}

void TextFile::close() {
  flush();
  stream_.close();
}

}  // namespace bench
