#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/line_reader.h"
#include "inventory/track_index.h"

namespace Orvane {

// Some tracks of a tracks file, line after line, as its lines give them.
class TrackBatch {
 public:
  // A track but for its ids; the texts are in the batch or in what it was read from.
  struct Texts {
    std::string_view title;
    std::string_view artistName;
    std::string_view albumName;
    std::string_view genreName;
    std::uint32_t rating;
  };

  // Replaces the batch by what the next lines hold, at least one line and at most `mostLines`.
  // Lines that can't be used are told on standard error, as lines of `path`, and skipped. Throws as
  // the reader does.
  //
  // The texts are good until the reader is used again, or, with `withCopy`, until the batch is.
  void read(LineReader& reader, const char* path, std::size_t mostLines, bool withCopy);

  const std::vector<Texts>& texts() const { return texts_; }
  const std::vector<TrackIds>& ids() const { return ids_; }  // of the same tracks

 private:
  void copyLines();

  std::vector<std::string_view> lines_;
  std::vector<std::string_view> fields_;
  std::string copy_;
  std::vector<Texts> texts_;
  std::vector<TrackIds> ids_;
};

}  // namespace Orvane
