// Makes an input of a given shape and size: tracks.txt and playlists.txt, or menu.xml. The same
// shape and size give the same bytes everywhere.
#include <charconv>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include "shapes.h"

namespace {

// Large enough for any measurement, small enough for every number in here to fit 32 bits.
constexpr std::uint32_t kMaxSize = 100'000'000;

const bench::Shape* findShape(std::string_view name) {
  for (const auto shapes : {bench::listShapes(), bench::xmlShapes()}) {
    for (const bench::Shape& shape : shapes) {
      if (shape.name == name) return &shape;
    }
  }
  return nullptr;
}

bool parseSize(std::string_view text, std::uint32_t& size) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), size);
  return result.ec == std::errc() && result.ptr == text.data() + text.size() && size >= 1 &&
         size <= kMaxSize;
}

int usage() {
  std::cerr << "usage: bench_generate SHAPE SIZE DIRECTORY\nSHAPE, and what SIZE counts:\n";
  for (const auto shapes : {bench::listShapes(), bench::xmlShapes()}) {
    for (const bench::Shape& shape : shapes) {
      std::cerr << "  " << shape.name << ": " << shape.description << "\n";
    }
  }
  return 64;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::uint32_t size = 0;
    if (argc != 4 || !parseSize(argv[2], size)) return usage();
    const bench::Shape* const shape = findShape(argv[1]);
    if (shape == nullptr) return usage();
    shape->write(size, argv[3]);
  } catch (const std::exception& error) {
    std::cerr << "bench_generate: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
