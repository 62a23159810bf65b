#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "output/linked_table.h"

namespace Orvane {

// Gives the records of a LinkedTable in order. The table must outlive it and stay as it is.
template <typename Record>
class LinkedTableReader {
 public:
  explicit LinkedTableReader(const LinkedTable<Record>& table)
      : table_(&table),
        leaf_(table.leaves_.begin()),
        run_(table.runs_.begin()),
        linked_(table.linked_.begin()) {}

  // Replaces `records` by what `form` makes of the next ones, at most `most`; by none at the end.
  // `ofTrack` gives the record of a leaf that is a track's number, unless the leaves count up.
  template <typename Form, typename OfTrack, typename MakeForm = std::identity>
  void read(std::vector<Form>& records, std::size_t most, OfTrack ofTrack, MakeForm form = {}) {
    const std::uint32_t end = endOf(most);
    records.resize(end - at_);
    auto record = records.begin();
    while (at_ < end) {
      if (linked_ != table_->linked_.end() && linked_->position == at_) {
        *record++ = form(linked_++->record);
        ++at_;
      } else if (run_ != table_->runs_.end() && run_->begin <= at_) {
        const std::uint32_t runEnd = std::min(run_->end, end);
        record = readRun(runEnd, record, ofTrack, form);
        at_ = runEnd;
        if (at_ == run_->end) ++run_;
      } else {
        *record++ = form(Record::ofLeaf(*leaf_++));
        ++at_;
      }
    }
  }

  // Leaves out what read() would give. False at the end.
  bool skip(std::size_t most) {
    const std::uint32_t end = endOf(most);
    if (at_ == end) return false;
    auto leaves = static_cast<std::ptrdiff_t>(end - at_);
    for (; linked_ != table_->linked_.end() && linked_->position < end; ++linked_) --leaves;
    while (run_ != table_->runs_.end() && run_->begin < end) {
      leaves -= static_cast<std::ptrdiff_t>(std::min(run_->end, end) - std::max(run_->begin, at_));
      if (run_->end > end) break;
      ++run_;
    }
    leaf_ += leaves;
    at_ = end;
    return true;
  }

 private:
  using Table = LinkedTable<Record>;

  // What read() gives of the run up to the record `end`.
  template <typename Out, typename OfTrack, typename MakeForm>
  Out readRun(std::uint32_t end, Out out, OfTrack ofTrack, MakeForm form) const {
    const std::uint32_t from = at_ - run_->begin;
    const std::uint32_t to = end - run_->begin;
    if constexpr (std::integral<typename Table::Leaf>) {
      if (run_->first != Table::kNotCounted) {
        for (std::uint32_t i = from; i < to; ++i) *out++ = form(Record::ofLeaf(run_->first + i));
        return out;
      }
    }
    return std::transform(run_->tracks + from, run_->tracks + to, out,
                          [&](std::uint32_t track) { return form(ofTrack(track)); });
  }

  std::uint32_t endOf(std::size_t most) const {
    return static_cast<std::uint32_t>(at_ + std::min<std::size_t>(most, table_->size() - at_));
  }

  const Table* table_;
  typename LargeVector<typename Table::Leaf>::const_iterator leaf_;
  typename LargeVector<typename Table::Run>::const_iterator run_;
  typename LargeVector<typename Table::Linked>::const_iterator linked_;
  std::uint32_t at_ = 0;
};

}  // namespace Orvane
