#include "skein/annotate.h"

#include <algorithm>
#include <vector>

#include "reader/annotation.h"
#include "reader/inventory_check.h"
#include "reader/text_escape.h"
#include "skein/exit_status.h"
#include "skein/finding_printer.h"

namespace Orvane {
namespace {

constexpr std::size_t kBytesPerLine = 8;
constexpr std::size_t kNameWidth = 15;
// A file of nothing but damage must not take more memory than it is worth.
constexpr std::size_t kMaxFindings = 65536;

class FindingList : public FindingSink {
 public:
  void found(const Finding& finding) override {
    if (findings_.size() < kMaxFindings) {
      findings_.push_back(finding);
    } else {
      ++omitted_;
    }
  }

  std::vector<Finding> sorted() && {
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
    return std::move(findings_);
  }

  std::uint64_t omitted() const { return omitted_; }

 private:
  std::vector<Finding> findings_;
  std::uint64_t omitted_ = 0;
};

class Verdicts : public FindingPrinter {
 public:
  Verdicts(const InventoryJob& job, const MenuPath& path) : FindingPrinter(job, path, {}) {}

 private:
  void print(const Finding& finding, Severity severity) override {
    job().printing.out.put("          ! ");
    printVerdict(finding, severity);
  }
};

class Listing : public AnnotationSink {
 public:
  Listing(const InventoryJob& job, FindingPrinter& verdicts, std::vector<Finding> findings)
      : job_(job), out_(job.printing.out), verdicts_(verdicts), findings_(std::move(findings)) {}

  void section(const std::string& title) override {
    const Style& style = job_.printing.style;
    out_.put(style.begin(Ink::kBold));
    out_.put(title);
    out_.put(style.end());
    out_.put('\n');
  }

  void field(const AnnotatedField& field) override {
    if (field.zeroFill) {
      line(field.offset, {}, field);
      report(field.offset + field.size);
      return;
    }
    for (std::uint64_t done = 0; done < field.size; done += kBytesPerLine) {
      if (out_.failed()) return;
      const std::uint64_t offset = field.offset + done;
      const auto count =
          static_cast<std::size_t>(std::min<std::uint64_t>(kBytesPerLine, field.size - done));
      line(offset, job_.view.bytes().subspan(static_cast<std::size_t>(offset), count), field);
      report(offset + count);
    }
  }

  // Findings about what lies before `offset`.
  void report(std::uint64_t offset) {
    while (next_ < findings_.size() && findings_[next_].offset < offset) {
      verdicts_.found(findings_[next_++]);
    }
  }

  void reportRest() { report(~std::uint64_t{0}); }

 private:
  void line(std::uint64_t offset, std::span<const std::uint8_t> bytes,
            const AnnotatedField& field) {
    constexpr std::size_t kHexWidth = kBytesPerLine * 3;
    constexpr std::string_view kFill = "00 ...";
    out_.hex(offset, 8);
    out_.put("  ");
    std::size_t width = kFill.size();
    if (field.zeroFill) {
      out_.put(kFill);
    } else {
      width = bytes.size() * 3 - 1;
      for (const std::uint8_t& byte : bytes) {
        if (&byte != bytes.data()) out_.put(' ');
        out_.hex(byte, 2);
      }
    }
    // A long field goes on without its name.
    if (offset != field.offset) {
      out_.put('\n');
      return;
    }
    out_.fill(' ', kHexWidth + 1 - width);
    out_.put(field.name);
    if (!field.value.empty()) {
      out_.fill(' ', kNameWidth - std::min(field.name.size(), kNameWidth) + 2);
      out_.put(field.value);
    }
    out_.put('\n');
  }

  const InventoryJob& job_;
  OutputBuffer& out_;
  FindingPrinter& verdicts_;
  const std::vector<Finding> findings_;
  std::size_t next_ = 0;
};

}  // namespace

int annotateInventory(const InventoryJob& job) {
  FindingList list;
  {
    TreeWalk walk(job.view);
    InventoryCheck check(job.view, list);
    check.run(walk);
  }
  const std::uint64_t omitted = list.omitted();
  const TreeIndex index(job.view);
  const MenuPath path(job.view, index.parents());
  Verdicts verdicts(job, path);
  Listing listing(job, verdicts, std::move(list).sorted());
  Annotation(index, listing).run();
  listing.reportRest();
  if (omitted != 0) {
    job.printing.out.put("          ! ");
    job.printing.out.number(omitted);
    job.printing.out.put(omitted == 1 ? " more finding" : " more findings");
    job.printing.out.put(" not shown, see: skein check\n");
  }
  if (verdicts.errors() == 0) return kStatusYes;
  job.printing.diagnostics.error(job.file, "damaged, see the lines with \"!\"");
  return kStatusNo;
}

}  // namespace Orvane
