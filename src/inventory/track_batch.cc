#include "inventory/track_batch.h"

#include <algorithm>
#include <iostream>

#include "errors/printable.h"
#include "inventory/decimal_number.h"
#include "inventory/split_fields.h"

namespace Orvane {

namespace {

constexpr std::string_view kSeparator = "|";
constexpr std::size_t kRequiredFields = 8;
constexpr std::size_t kUsedFields = 9;

}  // namespace

// The lines stand together in the reader's block.
void TrackBatch::copyLines() {
  const char* const begin = lines_.front().data();
  copy_.assign(begin, lines_.back().data() + lines_.back().size());
  for (std::string_view& line : lines_) {
    line =
        std::string_view(copy_).substr(static_cast<std::size_t>(line.data() - begin), line.size());
  }
}

void TrackBatch::take(LineReader& reader, std::size_t mostLines, bool withCopy) {
  lines_.resize(mostLines);
  lines_.resize(reader.nextLines(lines_));
  firstLine_ = reader.lineNumber() - lines_.size() + 1;
  if (withCopy) copyLines();
}

void TrackBatch::keepTitles(TitleStore& store) {
  std::size_t size = 0;
  for (const Texts& texts : texts_) size += texts.title.size();
  char* const begin = store.allocate(size);
  char* next = begin;
  for (Texts& texts : texts_) {
    char* const end = std::copy(texts.title.begin(), texts.title.end(), next);
    texts.title = {next, texts.title.size()};
    next = end;
  }
  titles_ = {begin, size};
}

void TrackBatch::parse(TitleStore& titles) {
  texts_.clear();
  ids_.clear();
  skipped_.clear();
  std::size_t lineNumber = firstLine_;
  for (const std::string_view line : lines_) {
    fields_.clear();
    splitFields(line, fields_, kSeparator, kUsedFields);
    if (fields_.size() >= kRequiredFields) {
      const std::uint32_t rating = fields_.size() < kUsedFields ? 0 : parseId(fields_[8]);
      texts_.push_back({fields_[1], fields_[3], fields_[5], fields_[7], rating});
      ids_.push_back(
          {parseId(fields_[0]), parseId(fields_[2]), parseId(fields_[4]), parseId(fields_[6])});
    } else if (line.find(kSeparator) != std::string_view::npos) {
      skipped_.push_back({lineNumber, fields_.size()});
    }
    ++lineNumber;
  }
  keepTitles(titles);
}

void TrackBatch::reportSkipped(const char* path) const {
  for (const Skipped& line : skipped_) {
    std::cerr << printable(path) << ":" << line.lineNumber << ": expected " << kRequiredFields
              << " fields, found " << line.fieldCount << ": line skipped" << std::endl;
  }
}

}  // namespace Orvane
