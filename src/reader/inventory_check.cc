#include "reader/inventory_check.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "reader/framing_check.h"
#include "reader/utf8.h"

namespace Orvane {
namespace {

constexpr std::uint64_t kLowBits = 0x0101010101010101;
constexpr std::uint64_t kHighBits = 0x8080808080808080;

std::uint64_t wordAt(std::string_view field, std::size_t i) {
  std::uint64_t word = 0;
  std::memcpy(&word, field.data() + i * sizeof word, sizeof word);
  return word;
}

// True for a field of ASCII characters followed by nothing but zeros: what nearly all are.
bool isPlain(std::string_view field) {
  if constexpr (std::endian::native != std::endian::little) return false;
  std::uint64_t odd = 0;    // bits that such a field does not have
  std::uint64_t ended = 0;  // all bits once a zero byte has come
  for (std::size_t i = 0; i < kNameFieldSize / sizeof(std::uint64_t); ++i) {
    const std::uint64_t word = wordAt(field, i);
    // Where all bytes are below 0x80 this marks exactly the zero bytes.
    const std::uint64_t zeros = ~(word + (kHighBits - kLowBits)) & kHighBits;
    // The bytes from the first marked one on, in file order; none without a mark.
    const std::uint64_t rest = ~(((zeros & (0 - zeros)) >> 7) - 1);
    odd |= word & (kHighBits | rest | ended);
    ended |= 0 - (rest >> 63);
  }
  return odd == 0;
}

}  // namespace

InventoryCheck::InventoryCheck(const InventoryView& view, FindingSink& sink)
    : view_(view), sink_(sink), dataUsed_(view.dataCount() / 64 + 1, 0) {}

void InventoryCheck::report(const Finding& finding) {
  ++count_;
  sink_.found(finding);
}

Finding InventoryCheck::about(Rule rule, std::uint32_t record) const {
  Finding finding{.rule = rule, .offset = view_.recordOffset(record)};
  finding.record = record;
  return finding;
}

void InventoryCheck::framing() {
  count_ += checkFraming(view_, sink_);
}

void InventoryCheck::reportRange(const TreeWalk::Visit& visit) {
  Finding finding = about(Rule::kChildRange, visit.record);
  finding.actual = visit.links.firstChildIndex;
  finding.expected = std::uint64_t{visit.links.firstChildIndex} + visit.links.childCount - 1;
  finding.other = view_.recordCount();
  report(finding);
}

void InventoryCheck::reportConflict(const TreeWalk::Visit& visit,
                                    std::span<const std::uint32_t> parents) {
  Rule rule = Rule::kCycle;
  if (visit.conflict == TreeWalk::Conflict::kShared) rule = Rule::kTwoParents;
  if (visit.conflict == TreeWalk::Conflict::kOverlap) rule = Rule::kOverlappingChildren;
  Finding finding = about(rule, visit.record);
  finding.other = visit.conflictRecord;
  finding.actual = parents[visit.conflictRecord];
  report(finding);
}

void InventoryCheck::reportDataIndex(const TreeWalk::Visit& visit) {
  const std::uint32_t dataIndex = visit.links.dataIndex;
  if (dataIndex < view_.statedCount(1)) {
    firstCutOff_ = std::min(firstCutOff_, dataIndex);
    lastCutOff_ = std::max(lastCutOff_, dataIndex);
    return;
  }
  Finding finding = about(Rule::kDataIndex, visit.record);
  finding.offset += 8;
  finding.actual = dataIndex;
  finding.expected = view_.dataCount();
  report(finding);
}

void InventoryCheck::item(const TreeWalk::Visit& visit, ItemView found) {
  const std::string_view field = found.nameField();
  if (isPlain(field)) return;
  const std::string_view name = found.name();
  const std::uint64_t nameOffset = view_.itemOffset(visit.links.dataIndex) + ItemView::kNameOffset;
  const std::size_t tail = field.find_first_not_of('\0', name.size());
  Finding finding = about(Rule::kNameTail, visit.record);
  if (view_.layout() == Layout::kTwoTable) finding.dataRecord = visit.links.dataIndex;
  if (tail != std::string_view::npos) {
    finding.actual = tail;
    finding.offset = nameOffset + tail;
    report(finding);
  }
  const std::size_t valid = validUtf8Prefix(name);
  if (valid != name.size()) {
    finding.rule = Rule::kNameUtf8;
    finding.actual = valid;
    finding.offset = nameOffset + valid;
    report(finding);
  }
}

void InventoryCheck::remainder(std::span<const std::uint32_t> parents) {
  for (std::uint32_t i = 0; i < parents.size(); ++i) {
    if (parents[i] != kNoRecord) continue;
    Finding finding = about(Rule::kUnreachableRecord, i);
    while (i + 1 < parents.size() && parents[i + 1] == kNoRecord) ++i;
    finding.actual = std::uint64_t{i} - finding.record + 1;
    report(finding);
  }
  if (view_.layout() == Layout::kOneTable) return;

  if (firstCutOff_ != kNoRecord) {
    Finding finding{.rule = Rule::kDataIndex, .offset = view_.bytes().size()};
    finding.dataRecord = firstCutOff_;
    finding.actual = std::uint64_t{lastCutOff_} - firstCutOff_ + 1;
    finding.subject = 1;
    report(finding);
  }
  const auto used = [this](std::uint32_t i) { return (dataUsed_[i / 64] >> (i % 64) & 1) != 0; };
  for (std::uint32_t i = 0; i < view_.dataCount(); ++i) {
    if (dataUsed_[i / 64] == ~std::uint64_t{0}) {
      i |= 63;
      continue;
    }
    if (used(i)) continue;
    Finding finding{.rule = Rule::kUnusedData, .offset = view_.itemOffset(i)};
    finding.dataRecord = i;
    while (i + 1 < view_.dataCount() && !used(i + 1)) ++i;
    finding.actual = std::uint64_t{i} - finding.dataRecord + 1;
    report(finding);
  }
}

void InventoryCheck::run(TreeWalk& walk) {
  framing();
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event == TreeWalk::Event::kEnter) visit(walk.current(), walk.parents());
  }
  remainder(walk.parents());
}

}  // namespace Orvane
