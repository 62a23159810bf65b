#include "all_verbs.h"

#include "reader/annotation.h"
#include "reader/tree_index.h"
#include "skein/exit_status.h"
#include "verb_runner.h"

namespace Orvane {
namespace {

class Coverage : public AnnotationSink {
 public:
  void section(const std::string& /*title*/) override {}
  void field(const AnnotatedField& field) override {
    inOrder_ = inOrder_ && field.offset == end_ && field.size != 0;
    end_ = field.offset + field.size;
  }
  bool isWhole(std::uint64_t size) const { return inOrder_ && end_ == size; }

 private:
  bool inOrder_ = true;
  std::uint64_t end_ = 0;
};

class Comparison {
 public:
  void expect(bool holds, const std::string& what) {
    if (!holds) text_ += what + "; ";
  }
  void expectStatus(const std::string& verb, const VerbResult& result, int status) {
    expect(result.status == status, verb + " ends with " + std::to_string(result.status) +
                                        ", expected " + std::to_string(status));
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace

std::string contradictionsIn(std::span<const std::uint8_t> bytes) {
  Comparison compare;
  const VerbResult check = checkOf(bytes);
  const int status = check.status;
  for (const Format format : {Format::kText, Format::kJson, Format::kJsonLines}) {
    compare.expectStatus("check", checkOf(bytes, format), status);
    compare.expectStatus("dump", dumpOf(bytes, format), status);
    compare.expectStatus("stats", statsOf(bytes, format), status);
  }
  compare.expectStatus("annotate", annotateOf(bytes), status);
  const VerbResult xml = decompileOf(bytes);

  std::string reason;
  const auto view = InventoryView::open(bytes, reason);
  if (!view) {
    compare.expect(status == kStatusTrouble, "check takes what is no inventory");
    compare.expectStatus("decompile", xml, kStatusTrouble);
    return compare.text();
  }
  compare.expect(status == kStatusYes || status == kStatusNo, "check ends with trouble");
  compare.expect((status == kStatusNo) == (check.out.find(" error: ") != std::string::npos),
                 "check's status and findings differ");
  compare.expect(xml.status == kStatusYes || xml.status == kStatusNo, "decompile is in trouble");
  compare.expect(xml.status == kStatusNo || status == kStatusYes,
                 "decompile sees no loss in what check finds damaged");
  compare.expect((xml.status == kStatusNo) == !xml.messages.empty(),
                 "decompile's status and messages differ");

  DumpOptions part;
  part.record = view->recordCount() / 2;
  part.depth = 1;
  const VerbResult partial = dumpOf(bytes, Format::kText, part);
  compare.expect(partial.status == kStatusNo || partial.status == kStatusYes,
                 "a part cannot be dumped");

  const TreeIndex index(*view);
  Coverage coverage;
  Annotation(index, coverage).run();
  compare.expect(coverage.isWhole(bytes.size()), "annotate leaves out or repeats bytes");

  const VerbResult self = diffOf(bytes, bytes);
  compare.expect(self.status == kStatusYes && self.out.empty(), "the file differs from itself");
  const std::span<const std::uint8_t> half = bytes.first(bytes.size() / 2);
  const VerbResult other = diffOf(bytes, half);
  compare.expect((other.status == kStatusTrouble) == !InventoryView::open(half, reason),
                 "half of the file cannot be compared with the whole");
  compare.expect(other.status != kStatusYes || other.out.empty(),
                 "differences do not make the status");
  return compare.text();
}

}  // namespace Orvane
