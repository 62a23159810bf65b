#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/line_reader.h"
#include "inventory/title_store.h"
#include "inventory/track_ids.h"

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

  // Replaces the batch by the next lines, at least one and at most `mostLines`, which are good
  // until the reader is used again, or, with `withCopy`, until the batch is. Throws as the reader
  // does.
  void take(LineReader& reader, std::size_t mostLines, bool withCopy);

  // Finds the tracks in the lines taken. Puts their titles into `titles`, where they stay; the
  // names are good as long as the lines are.
  void parse(TitleStore& titles);

  // Tells on standard error of the lines that can't be used and are skipped, as lines of `path`.
  void reportSkipped(const char* path) const;

  const std::vector<Texts>& texts() const { return texts_; }
  const std::vector<TrackIds>& ids() const { return ids_; }  // of the same tracks

  // The titles, one behind the other.
  std::string_view titles() const { return titles_; }

 private:
  struct Skipped {
    std::size_t lineNumber;
    std::size_t fieldCount;
  };

  void copyLines();
  void keepTitles(TitleStore& store);

  std::vector<std::string_view> lines_;
  std::size_t firstLine_ = 0;  // its number
  std::string copy_;
  std::vector<std::string_view> fields_;
  std::vector<Texts> texts_;
  std::vector<TrackIds> ids_;
  std::string_view titles_;
  std::vector<Skipped> skipped_;
};

}  // namespace Orvane
