// What verbs still do when nobody takes their output any more.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <string>
#include <vector>

#include "inventory_image.h"
#include "skein/annotate.h"
#include "skein/decompile.h"
#include "skein/dump.h"

namespace Orvane {
namespace {

// Takes everything, or nothing at all.
class Reader : public ByteSink {
 public:
  explicit Reader(bool gone) : gone_(gone) {}
  bool put(std::string_view bytes) override {
    text += gone_ ? "" : bytes;
    return !gone_;
  }
  std::string text;

 private:
  const bool gone_;
};

// Output with and without a reader, and messages, which are always read.
struct Streams {
  explicit Streams(bool gone) : reader(gone) {}

  std::string messagesRead() {
    messages.flush();
    return messageReader.text;
  }

  Reader reader;
  Reader messageReader{false};
  OutputBuffer out{reader};
  OutputBuffer messages{messageReader};
  Diagnostics diagnostics{messages, out, false};
};

// Many times what a buffer holds, and behind all that the record `last`.
Sketch longMenu(Sketch last) {
  std::vector<Sketch> children(4000, media(std::string(60, 'x'), 1));
  children.push_back(std::move(last));
  return menu("R", {menu("A", std::move(children))});
}

TEST(FailingOutput, EndsADump) {
  InventoryImage image(Layout::kTwoTable, longMenu(menu("last")));
  image.dataIndex(image.recordCount() - 1, 999999);
  DumpOptions options;
  options.path = {"A"};
  for (const bool gone : {false, true}) {
    Streams streams(gone);
    Printing printing{streams.out, streams.diagnostics};
    const int status =
        workOnBytes(image.bytes(), "a.inv", {}, printing,
                    [&options](const InventoryJob& job) { return dumpInventory(job, options); });
    // Damage that is never come to is none.
    EXPECT_EQ(status, gone ? 0 : 1);
  }
}

TEST(FailingOutput, EndsADecompilation) {
  Sketch rated = menu("last");
  rated.rating = 2;
  const InventoryImage image(Layout::kOneTable, longMenu(rated));
  for (const bool gone : {false, true}) {
    Streams streams(gone);
    Printing printing{streams.messages, streams.diagnostics};
    const int status = workOnBytes(
        image.bytes(), "a.inv", {}, printing,
        [&streams](const InventoryJob& job) { return decompileInventory(job, {}, streams.out); });
    EXPECT_EQ(status, gone ? 0 : 1);
    EXPECT_EQ(streams.messagesRead().find("[menu-rating]") == std::string::npos, gone);
  }
}

TEST(FailingOutput, EndsTheLoopOverFiles) {
  const std::vector<std::string> missing(3, "/no/such/file");
  for (const bool gone : {false, true}) {
    Streams streams(gone);
    Printing printing{streams.out, streams.diagnostics, Format::kJson};
    EXPECT_EQ(forEachInventory(missing, "test/1", printing, [](const InventoryJob&) { return 0; }),
              2);
    const std::string messages = streams.messagesRead();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), '\n'), gone ? 1 : 3);
  }
}

// Pages of memory that hold an inventory followed by bytes without meaning, of which those in the
// second half cannot be read.
class HalfReadable {
 public:
  explicit HalfReadable(const InventoryImage& image)
      : pages_(::mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    EXPECT_NE(pages_, MAP_FAILED);
    auto* const begin = static_cast<std::uint8_t*>(pages_);
    std::copy(image.bytes().begin(), image.bytes().end(), begin);
    EXPECT_EQ(::mprotect(begin + kSize / 2, kSize / 2, PROT_NONE), 0);
  }
  HalfReadable(const HalfReadable&) = delete;
  HalfReadable& operator=(const HalfReadable&) = delete;
  ~HalfReadable() { ::munmap(pages_, kSize); }

  std::span<const std::uint8_t> bytes() const {
    return {static_cast<const std::uint8_t*>(pages_), kSize};
  }

 private:
  static constexpr std::size_t kSize = std::size_t{1} << 20;
  void* const pages_;
};

TEST(FailingOutput, EndsALongField) {
  const HalfReadable file(InventoryImage(Layout::kOneTable, menu("R")));
  Streams streams(true);
  Printing printing{streams.out, streams.diagnostics};
  EXPECT_EQ(workOnBytes(file.bytes(), "a.inv", {}, printing, annotateInventory), 1);
  EXPECT_TRUE(streams.out.failed());
}

}  // namespace
}  // namespace Orvane
