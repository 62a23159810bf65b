#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "reader/finding.h"
#include "reader/menu_path.h"
#include "reader/rule.h"
#include "skein/inventory_job.h"

namespace Orvane {

// Sorts findings by how seriously they are taken, counts them, and prints them.
class FindingPrinter : public FindingSink {
 public:
  struct Options {
    RuleSettings settings{};
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();  // findings to print
  };

  // `path` must know the parents of a walk over the job's view. All are borrowed.
  FindingPrinter(const InventoryJob& job, const MenuPath& path, const Options& options)
      : job_(job), path_(path), options_(options) {}

  void found(const Finding& finding) final;

  std::uint64_t errors() const { return errors_; }
  std::uint64_t warnings() const { return warnings_; }
  // Findings that have been printed.
  std::uint64_t printed() const { return printed_; }
  // Findings that the limit kept from being printed.
  std::uint64_t omitted() const { return omitted_; }

 protected:
  // Prints one finding: here as "FILE:0xOFFSET: record N (PATH): error: MESSAGE [RULE]", or as a
  // JSON object.
  virtual void print(const Finding& finding, Severity severity);
  void printJson(const Finding& finding, Severity severity);

  const InventoryJob& job() const { return job_; }
  // "record 5 (/A/B), data record 3" as far as there is any of it.
  std::string place(const Finding& finding) const;
  // "error: MESSAGE [RULE]", coloured.
  void printVerdict(const Finding& finding, Severity severity);

 private:
  const InventoryJob& job_;
  const MenuPath& path_;
  const Options options_;
  std::uint64_t errors_ = 0;
  std::uint64_t warnings_ = 0;
  std::uint64_t printed_ = 0;
  std::uint64_t omitted_ = 0;
};

// Prints "FILE: N more findings not shown", or nothing for 0.
void printOmitted(const InventoryJob& job, std::uint64_t count);

}  // namespace Orvane
