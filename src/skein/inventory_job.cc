#include "skein/inventory_job.h"

#include <algorithm>

#include "reader/mapped_file.h"
#include "skein/exit_status.h"

namespace Orvane {
namespace {

// Writes what the json formats have around each file.
class Document {
 public:
  Document(Printing& printing, std::string_view schema)
      : format_(printing.format), schema_(schema), json_(printing.out) {}

  void begin() {
    if (format_ != Format::kJson) return;
    json_.beginObject();
    json_.field("schema", schema_);
    json_.key("files");
    json_.beginArray();
  }

  void beginFile(std::string_view file, const InventoryView* view, std::string_view error) {
    if (format_ == Format::kText) return;
    json_.beginObject();
    if (format_ == Format::kJsonLines) {
      json_.field("schema", schema_);
      json_.field("type", "file");
    }
    json_.nameField("file", file, file);
    if (view != nullptr) {
      json_.field("layout", nameOf(view->layout()));
      json_.field("size", view->bytes().size());
      json_.field("records", view->recordCount());
      json_.field("dataRecords", view->layout() == Layout::kTwoTable ? view->dataCount() : 0);
    } else {
      json_.field("error", error);
    }
    if (format_ == Format::kJsonLines) {
      json_.endObject();
      json_.endLine();
    }
  }

  void endFile(int status) {
    if (format_ == Format::kText) return;
    if (format_ == Format::kJsonLines) {
      json_.beginObject();
      json_.field("type", "end");
    }
    json_.field("status", static_cast<std::uint64_t>(status));
    json_.endObject();
    if (format_ == Format::kJsonLines) json_.endLine();
  }

  void end() {
    if (format_ != Format::kJson) return;
    json_.endArray();
    json_.endObject();
    json_.endLine();
  }

  JsonWriter& json() { return json_; }

 private:
  Format format_;
  std::string_view schema_;
  JsonWriter json_;
};

int reportTrouble(std::string_view file, const std::string& reason, Printing& printing,
                  Document& document) {
  document.beginFile(file, nullptr, reason);
  document.endFile(kStatusTrouble);
  printing.diagnostics.error(file, reason);
  return kStatusTrouble;
}

int workOn(std::span<const std::uint8_t> bytes, std::string_view file, Printing& printing,
           Document& document, const InventoryWork& work) {
  std::string reason;
  const auto view = InventoryView::open(bytes, reason);
  if (!view) return reportTrouble(file, reason, printing, document);
  document.beginFile(file, &*view, {});
  const int status = work({*view, file, printing, document.json()});
  document.endFile(status);
  return status;
}

}  // namespace

int forEachInventory(const std::vector<std::string>& files, std::string_view schema,
                     Printing& printing, const InventoryWork& work) {
  Document document(printing, schema);
  document.begin();
  int status = kStatusYes;
  for (const std::string& file : files) {
    std::string error;
    const auto mapped = MappedFile::open(file, error);
    const int one = mapped ? workOn(mapped->bytes(), file, printing, document, work)
                           : reportTrouble(file, error, printing, document);
    status = std::max(status, one);
    if (printing.out.failed()) break;
  }
  document.end();
  return status;
}

int workOnBytes(std::span<const std::uint8_t> bytes, std::string_view file, std::string_view schema,
                Printing& printing, const InventoryWork& work) {
  Document document(printing, schema);
  document.begin();
  const int status = workOn(bytes, file, printing, document, work);
  document.end();
  return status;
}

std::string_view nameOf(Layout layout) {
  return layout == Layout::kOneTable ? "one-table" : "two-table";
}

}  // namespace Orvane
