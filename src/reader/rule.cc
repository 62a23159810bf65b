#include "reader/rule.h"

namespace Orvane {
namespace {

constexpr std::array<RuleInfo, kRuleCount> kRules = {{
    {"header-constant", Severity::kError, "a fixed field of the file header has another value"},
    {"table-count", Severity::kError, "the header's number of tables is not that of the layout"},
    {"descriptor-constant", Severity::kError, "a fixed field of a table descriptor is wrong"},
    {"record-size", Severity::kError, "a descriptor's record size is not that of its table"},
    {"table-offset", Severity::kError, "a table does not begin where the one before it ends"},
    {"record-count", Severity::kError, "the tree table's number of records is not what fits"},
    {"table-overlap", Severity::kError, "a table runs into another one or into the header"},
    {"truncated", Severity::kError, "the file ends before its tables do"},
    {"trailing-bytes", Severity::kError, "bytes follow the last table"},
    {"no-root", Severity::kError, "there is no root record"},
    {"child-range", Severity::kError, "a menu's children lie outside the table"},
    {"cycle", Severity::kError, "a menu is among its own descendants"},
    {"two-parents", Severity::kError, "two menus share their children"},
    {"overlapping-children", Severity::kError, "a menu's children run into another menu's"},
    {"data-index", Severity::kError, "a record's data record does not exist"},
    {"name-tail", Severity::kWarning, "bytes other than zero follow a name's terminator"},
    {"name-utf8", Severity::kWarning, "a name is not valid UTF-8"},
    {"unreachable-record", Severity::kError, "no menu leads to a record"},
    {"unused-data", Severity::kError, "no record uses a data record"},
}};

}  // namespace

const RuleInfo& infoOf(Rule rule) {
  return kRules[static_cast<std::size_t>(rule)];
}

std::optional<Rule> ruleByName(std::string_view name) {
  for (std::size_t i = 0; i < kRules.size(); ++i) {
    if (kRules[i].name == name) return static_cast<Rule>(i);
  }
  return std::nullopt;
}

RuleSettings::RuleSettings() : severities_{} {
  for (std::size_t i = 0; i < kRules.size(); ++i) severities_[i] = kRules[i].severity;
}

bool RuleSettings::set(std::string_view name, Severity severity) {
  const std::optional<Rule> rule = ruleByName(name);
  if (!rule) return false;
  severities_[static_cast<std::size_t>(*rule)] = severity;
  return true;
}

bool RuleSettings::apply(std::string_view word) {
  if (word == "error") {
    for (Severity& severity : severities_) {
      if (severity == Severity::kWarning) severity = Severity::kError;
    }
    return true;
  }
  constexpr std::string_view kPromote = "error=";
  constexpr std::string_view kDemote = "no-error=";
  constexpr std::string_view kSilence = "no-";
  if (set(word, Severity::kWarning)) return true;
  if (word.starts_with(kPromote)) return set(word.substr(kPromote.size()), Severity::kError);
  if (word.starts_with(kDemote)) return set(word.substr(kDemote.size()), Severity::kWarning);
  // "no-root" is a rule of its own; it is silenced by "no-no-root".
  if (word.starts_with(kSilence)) return set(word.substr(kSilence.size()), Severity::kOff);
  return false;
}

}  // namespace Orvane
