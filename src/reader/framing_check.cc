#include "reader/framing_check.h"

#include <algorithm>
#include <array>

namespace Orvane {
namespace {

class FramingCheck {
 public:
  FramingCheck(const InventoryView& view, FindingSink& sink) : view_(view), sink_(sink) {}

  std::uint64_t run() {
    checkHeader();
    for (std::size_t table = 0; table < view_.tableCount(); ++table) {
      const auto descriptor = view_.descriptor(table);
      if (descriptor) checkDescriptor(table, *descriptor);
    }
    checkOverlap();
    checkEnd();
    if (view_.recordCount() == 0) reportNoRoot();
    return count_;
  }

 private:
  std::uint64_t size() const { return view_.bytes().size(); }
  std::uint64_t prefix() const { return view_.prefixSize(); }

  // 0 tree table, 1 data table, 2 combined table.
  std::uint8_t subjectOf(std::size_t table) const {
    if (view_.layout() == Layout::kOneTable) return 2;
    return table == 0 ? 0 : 1;
  }

  void report(const Finding& finding) {
    ++count_;
    sink_.found(finding);
  }

  void expect(Rule rule, std::uint64_t offset, std::uint64_t actual, std::uint64_t expected,
              std::uint8_t subject, std::uint32_t field = kNoRecord) {
    if (actual == expected) return;
    Finding finding{.rule = rule, .offset = offset};
    finding.actual = actual;
    finding.expected = expected;
    finding.subject = subject;
    finding.other = field;
    report(finding);
  }

  void checkHeader() {
    const FileHeaderFields header = view_.header();
    expect(Rule::kHeaderConstant, 0, header.zero, 0, 0);
    expect(Rule::kHeaderConstant, 1, header.version, kFileHeaderVersion, 1);
    expect(Rule::kHeaderConstant, 2, header.reserved16, 0, 2);
    expect(Rule::kHeaderConstant, 4, header.reserved32, 0, 3);
    expect(Rule::kTableCount, 8, header.tableCount, view_.tableCount(), 4);
    expect(Rule::kHeaderConstant, 12, header.headerSize, kFileHeaderSize, 5);
  }

  void checkDescriptor(std::size_t table, const DescriptorFields& found) {
    const std::uint64_t at = kFileHeaderSize + table * kTableDescriptorSize;
    const std::uint8_t subject = subjectOf(table);
    constexpr std::array kKinds = {TableKind::kTree, TableKind::kData, TableKind::kCombined};
    std::uint64_t offset = prefix();
    // Offsets are 32 bits wide also where the table lies further on.
    if (table == 1) {
      offset = prefix() + std::uint64_t{view_.statedCount(0)} * kTreeRecordSize;
      const auto lowHalf = static_cast<std::uint32_t>(offset);
      if (found.offset == lowHalf || offset <= size()) offset = lowHalf;
    }
    expect(Rule::kDescriptorConstant, at, found.kind, static_cast<std::uint8_t>(kKinds[subject]),
           subject, 0);
    expect(Rule::kDescriptorConstant, at + 1, found.version, kTableDescriptorVersion, subject, 1);
    expect(Rule::kDescriptorConstant, at + 2, found.reserved, 0, subject, 2);
    expect(Rule::kTableOffset, at + 4, found.offset, offset, subject);
    expect(Rule::kRecordCount, at + 8, found.count, view_.statedCount(table), subject);
    expect(Rule::kRecordSize, at + 12, found.recordSize,
           InventoryView::recordSize(view_.layout(), table), subject);
  }

  // Where the stated number of records of a table ends.
  std::uint64_t statedEnd(std::size_t table) const {
    return view_.tableOffset(table) + std::uint64_t{view_.statedCount(table)} *
                                          InventoryView::recordSize(view_.layout(), table);
  }

  void checkOverlap() {
    // A second table that isn't there begins no later than the first one.
    const std::uint64_t dataBegin = view_.tableOffset(1);
    if (view_.tableOffset(0) >= dataBegin || statedEnd(0) <= dataBegin) return;
    if (dataBegin >= size() && statedEnd(1) == dataBegin) return;
    Finding finding{.rule = Rule::kTableOverlap, .offset = dataBegin};
    finding.subject = subjectOf(0);
    finding.actual = statedEnd(0);
    finding.expected = dataBegin;
    if (statedEnd(0) > size()) finding.other = 0;
    report(finding);
  }

  void checkEnd() {
    Finding finding{.rule = Rule::kTruncated, .offset = size()};
    finding.actual = size();
    if (size() < prefix()) {
      finding.expected = prefix();
      finding.other = 0;
      report(finding);
      return;
    }
    std::uint64_t end = std::max(statedEnd(0), statedEnd(1));
    for (std::size_t table = 0; table < view_.tableCount(); ++table) {
      // Where the tree table would run into the data table, that has been said.
      const bool overlaps = view_.tableOffset(table) < view_.tableOffset(1) &&
                            statedEnd(table) > view_.tableOffset(1);
      if (overlaps || statedEnd(table) <= size()) continue;
      finding.subject = subjectOf(table);
      finding.expected = end;
      report(finding);
      break;
    }
    // Behind a tree table that claims too much, the data table's end is the file's.
    if (view_.tableCount() == 2 && end > size()) end = statedEnd(1);
    if (end < size()) reportTrailing(end);
  }

  void reportNoRoot() {
    Finding finding{.rule = Rule::kNoRoot, .offset = std::min(prefix(), size())};
    finding.subject = subjectOf(0);
    const std::size_t rootSize = InventoryView::recordSize(view_.layout(), 0);
    if (!view_.descriptor(0) || view_.statedCount(0) != 0) {
      finding.other = size() < view_.tableOffset(0) + rootSize ? 0 : 1;
    }
    report(finding);
  }

  void reportTrailing(std::uint64_t end) {
    Finding finding{.rule = Rule::kTrailingBytes, .offset = end};
    finding.actual = size() - end;
    std::string reason;
    const auto rest = view_.bytes().subspan(static_cast<std::size_t>(end));
    finding.subject = InventoryView::open(rest, reason).has_value() ? 1 : 0;
    report(finding);
  }

  const InventoryView& view_;
  FindingSink& sink_;
  std::uint64_t count_ = 0;
};

}  // namespace

std::uint64_t checkFraming(const InventoryView& view, FindingSink& sink) {
  return FramingCheck(view, sink).run();
}

}  // namespace Orvane
