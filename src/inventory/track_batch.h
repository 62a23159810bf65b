#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/line_reader.h"
#include "inventory/track_index.h"
#include "tree/arena.h"

namespace Orvane {

// Some tracks of a tracks file, line after line, as its lines give them.
class TrackBatch {
 public:
  // A track but for its ids.
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
  // The titles are put into `titles`. The names are good until the reader is used again, or, with
  // `withCopy`, until the batch is.
  void read(LineReader& reader, const char* path, std::size_t mostLines, bool withCopy,
            Arena& titles);

  const std::vector<Texts>& texts() const { return texts_; }
  const std::vector<TrackIds>& ids() const { return ids_; }  // of the same tracks

  // The titles, one behind the other.
  std::string_view titles() const { return titles_; }

 private:
  void copyLines();
  void keepTitles(Arena& arena);

  std::vector<std::string_view> lines_;
  std::vector<std::string_view> fields_;
  std::string copy_;
  std::string_view titles_;
  std::vector<Texts> texts_;
  std::vector<TrackIds> ids_;
};

}  // namespace Orvane
