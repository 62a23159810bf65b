#include "reader/finding.h"

#include <array>
#include <string_view>

namespace Orvane {
namespace {

constexpr std::array<std::string_view, 3> kTableNames = {"tree table", "data table",
                                                         "combined table"};
// By subject, as FramingCheck numbers them.
constexpr std::array<std::string_view, 6> kHeaderFields = {"zero",       "version", "reserved16",
                                                           "reserved32", "tables",  "headerSize"};
constexpr std::array<std::string_view, 3> kDescriptorFields = {"kind", "version", "reserved"};

std::string number(std::uint64_t value) {
  return std::to_string(value);
}

// "1 record" or "7 records".
std::string counted(std::uint64_t count, std::string_view noun) {
  return number(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string was(const Finding& finding) {
  return " is " + number(finding.actual) + ", expected " + number(finding.expected);
}

std::string table(const Finding& finding) {
  return std::string(kTableNames[finding.subject % 3]);
}

// "record 7" or "records 7 to 9".
std::string run(std::string_view noun, std::uint32_t first, std::uint64_t count) {
  if (count == 1) return std::string(noun) + " " + number(first);
  return std::string(noun) + "s " + number(first) + " to " + number(first + count - 1);
}

}  // namespace

std::string describe(const Finding& finding) {
  switch (finding.rule) {
    case Rule::kHeaderConstant:
      return "header field " + std::string(kHeaderFields[finding.subject % 6]) + was(finding);
    case Rule::kTableCount:
      return "the number of tables" + was(finding) + " by the first table's kind and record size";
    case Rule::kDescriptorConstant:
      return table(finding) + " descriptor: " + std::string(kDescriptorFields[finding.other % 3]) +
             was(finding);
    case Rule::kRecordSize:
      return table(finding) + " descriptor: record size" + was(finding);
    case Rule::kTableOffset:
      // More than an offset can say: such a number could only confuse as an expected value.
      if (finding.expected > 0xFFFFFFFF) {
        return table(finding) + " descriptor: offset is " + number(finding.actual) +
               ", but by its count the tree table ends at byte " + number(finding.expected);
      }
      return table(finding) + " descriptor: offset" + was(finding);
    case Rule::kRecordCount:
      return table(finding) + " descriptor: count is " + number(finding.actual) +
             ", but the data table's offset and the file's length say " + number(finding.expected);
    case Rule::kTableOverlap:
      if (finding.other != kNoRecord) {
        return "the " + table(finding) + " runs into the data table that begins at byte " +
               number(finding.expected) + ": by its count it ends at byte " +
               number(finding.actual) + ", beyond the end of the file";
      }
      return "the " + table(finding) + " ends at byte " + number(finding.actual) +
             ", inside the data table that begins at byte " + number(finding.expected);
    case Rule::kTruncated:
      if (finding.other != kNoRecord) {
        return "the file ends after " + number(finding.actual) + " bytes, within the " +
               number(finding.expected) + " bytes of header and table descriptors";
      }
      return "the file ends after " + number(finding.actual) + " bytes, within the " +
             table(finding) + ", and should have " + number(finding.expected);
    case Rule::kTrailingBytes:
      return counted(finding.actual, "byte") + (finding.actual == 1 ? " follows" : " follow") +
             " the last table" +
             (finding.subject != 0 ? ": they begin like another inventory" : "");
    case Rule::kNoRoot:
      if (finding.other == 0) return "the root record is cut off with the end of the file";
      if (finding.other == 1)
        return "there is no root record: the data table leaves no room for it";
      return "there is no root record: the " + table(finding) + " is empty";
    case Rule::kChildRange:
      if (finding.actual == finding.expected) {
        return "child " + number(finding.actual) + " lies outside the table of " +
               counted(finding.other, "record");
      }
      return "children " + number(finding.actual) + " to " + number(finding.expected) +
             " lie outside the table of " + counted(finding.other, "record");
    case Rule::kCycle:
      if (finding.other == finding.record) return "cycle: the record is among its own children";
      return "cycle: record " + number(finding.other) + " is among its children and also above it";
    case Rule::kTwoParents:
      return "two parents: its children from record " + number(finding.other) +
             " on are those of record " + number(finding.actual);
    case Rule::kOverlappingChildren:
      return "its children overlap: record " + number(finding.other) +
             " is already a child of record " + number(finding.actual);
    case Rule::kDataIndex:
      if (finding.subject != 0) {
        return run("data record", finding.dataRecord, finding.actual) +
               (finding.actual == 1 ? " is" : " are") + " cut off with the end of the file";
      }
      return "data index " + number(finding.actual) + " is outside the table of " +
             counted(finding.expected, "data record");
    case Rule::kNameTail:
      return "bytes other than zero follow the terminator of the name, first at byte " +
             number(finding.actual) + " of the field";
    case Rule::kNameUtf8:
      return "the name is not valid UTF-8, from byte " + number(finding.actual) + " on";
    case Rule::kUnreachableRecord:
      return run("record", finding.record, finding.actual) +
             (finding.actual == 1 ? " is" : " are") + " not reachable from the root";
    case Rule::kUnusedData:
      return run("data record", finding.dataRecord, finding.actual) +
             (finding.actual == 1 ? " is" : " are") + " not used by any record";
  }
  return {};
}

}  // namespace Orvane
