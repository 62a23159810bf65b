// Runs a fuzzer on every file of the folders that are named, without looking for new inputs.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Path = std::filesystem::path;

std::vector<Path> filesIn(const Path& folder) {
  std::vector<Path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void replay(const Path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> content{std::istreambuf_iterator<char>(in), {}};
  if (!in) throw std::filesystem::filesystem_error("cannot read", file, std::error_code());
  // An input of its own size to the byte, so that what reads past it is seen.
  const std::vector<std::uint8_t> bytes(content.begin(), content.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  try {
    for (int i = 1; i < argc; ++i) {
      for (const Path& file : filesIn(argv[i])) {
        // The last name that is printed is the one that failed.
        std::cout << file.string() << std::endl;
        replay(file);
        ++count;
      }
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    return 1;
  }
  std::cout << count << " inputs" << std::endl;
  return count == 0 ? 1 : 0;
}
