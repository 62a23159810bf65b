// The rules that an inventory can break, by name.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Orvane {

enum class Severity : std::uint8_t { kOff, kWarning, kError };

// In the order in which a check comes upon them.
enum class Rule : std::uint8_t {
  kHeaderConstant,
  kTableCount,
  kDescriptorConstant,
  kRecordSize,
  kTableOffset,
  kRecordCount,
  kTableOverlap,
  kTruncated,
  kTrailingBytes,
  kNoRoot,
  kChildRange,
  kCycle,
  kTwoParents,
  kOverlappingChildren,
  kDataIndex,
  kNameTail,
  kNameUtf8,
  kUnreachableRecord,
  kUnusedData,
};
inline constexpr std::size_t kRuleCount = 19;

struct RuleInfo {
  std::string_view name;  // stable: scripts silence and promote rules by it
  Severity severity;      // unless told otherwise
  std::string_view summary;
};

const RuleInfo& infoOf(Rule rule);
std::optional<Rule> ruleByName(std::string_view name);

// How seriously each rule is taken in one run.
class RuleSettings {
 public:
  RuleSettings();

  Severity of(Rule rule) const { return severities_[static_cast<std::size_t>(rule)]; }

  // Applies one word, of which later ones override earlier ones: "no-NAME" silences a rule,
  // "error=NAME" makes it an error, "no-error=NAME" and "NAME" a warning, "error" makes every
  // warning an error. False, and nothing changed, for any other word.
  bool apply(std::string_view word);

 private:
  bool set(std::string_view name, Severity severity);

  std::array<Severity, kRuleCount> severities_;
};

}  // namespace Orvane
