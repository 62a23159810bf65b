#pragma once

#include <cstdint>
#include <string>

#include "reader/inventory_view.h"
#include "reader/rule.h"

namespace Orvane {

// One breach of a rule. Small and without text of its own, so that millions of them cost little;
// describe() puts it into words.
struct Finding {
  Rule rule;
  std::uint64_t offset = 0;  // where in the file it shows, in bytes; the file's size when cut off
  std::uint32_t record = kNoRecord;      // the tree or node record concerned, if any
  std::uint32_t dataRecord = kNoRecord;  // two-table layout: the data record concerned, if any
  std::uint32_t other = kNoRecord;       // a second record that is part of the trouble
  std::uint8_t subject = 0;              // which field or table, see the rule's wording
  std::uint64_t actual = 0;
  std::uint64_t expected = 0;
};

// Takes findings one by one, in the order in which they come up.
class FindingSink {
 public:
  virtual ~FindingSink() = default;
  virtual void found(const Finding& finding) = 0;
};

// The finding as a sentence without capital, full stop, place or rule name, which are the caller's.
std::string describe(const Finding& finding);

}  // namespace Orvane
