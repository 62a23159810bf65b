// Writing XML while memory runs out, at every point where it can.
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <set>
#include <string>

#include "skein/xml_menu_writer.h"

namespace Orvane {
namespace {

int blocksLeft = 0;  // that the library still gets
std::set<void*> blocksHeld;

void* allocate(std::size_t size) {
  if (blocksLeft-- <= 0) return nullptr;
  return *blocksHeld.insert(std::malloc(size)).first;
}

void release(void* block) {
  blocksHeld.erase(block);
  std::free(block);
}

void* resize(void* block, std::size_t size) {
  if (blocksLeft-- <= 0) return nullptr;
  blocksHeld.erase(block);
  return *blocksHeld.insert(std::realloc(block, size)).first;
}

char* duplicate(const char* text) {
  void* const copy = allocate(std::strlen(text) + 1);
  return copy == nullptr ? nullptr : std::strcpy(static_cast<char*>(copy), text);
}

void saysNothing(void* /*context*/, const char* /*format*/, ...) {}

// Memory of the XML library ends after some blocks for as long as the object lives.
class ScarceMemory {
 public:
  explicit ScarceMemory(int blocks) {
    // What it keeps for good.
    xmlInitParser();
    xmlMemGet(&free_, &malloc_, &realloc_, &strdup_);
    blocksLeft = blocks;
    xmlMemSetup(release, allocate, resize, duplicate);
    xmlSetGenericErrorFunc(nullptr, saysNothing);
    xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});
  }
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;
  ~ScarceMemory() {
    lost();
    // It loses some by itself between the start and the end of an element.
    while (!blocksHeld.empty()) release(*blocksHeld.begin());
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    xmlSetGenericErrorFunc(nullptr, nullptr);
    xmlMemSetup(free_, malloc_, realloc_, strdup_);
  }

  // Blocks that should have been given back by now.
  static std::size_t lost() {
    xmlResetLastError();
    return blocksHeld.size();
  }

 private:
  xmlFreeFunc free_ = nullptr;
  xmlMallocFunc malloc_ = nullptr;
  xmlReallocFunc realloc_ = nullptr;
  xmlStrdupFunc strdup_ = nullptr;
};

constexpr int kPlenty = 1000;

// The text that is written with so many blocks of memory, or nothing where an exception tells that
// there are too few.
std::optional<std::string> writtenWith(int blocks) {
  StringSink sink;
  OutputBuffer out(sink);
  const ScarceMemory memory(blocks);
  try {
    XmlMenuWriter xml(out);
    xml.startElement("inventory");
    xml.nameAttribute("R");
    xml.startElement("menu");
    xml.nameAttribute(std::string(5000, 'n'));
    xml.numberAttribute("rectype", 4);
    xml.endElement();
    xml.endElement();
    xml.finish();
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
  out.flush();
  return sink.text();
}

TEST(XmlMenuWriter, TellsWhenMemoryRunsOut) {
  const std::string all = writtenWith(kPlenty).value_or("");
  EXPECT_TRUE(all.ends_with("nn\" rectype=\"4\"/>\n</inventory>\n")) << all;
  int blocks = 0;
  std::optional<std::string> text;
  while (!text && blocks < kPlenty) text = writtenWith(blocks++);
  EXPECT_GT(blocks, 10);
  EXPECT_EQ(text, all);
}

TEST(XmlMenuWriter, GivesBackWhatItGotBeforeMemoryRanOut) {
  StringSink sink;
  OutputBuffer out(sink);
  int blocks = 0;
  for (bool begun = false; !begun && blocks < kPlenty; ++blocks) {
    const ScarceMemory memory(blocks);
    try {
      const XmlMenuWriter xml(out);
      begun = true;
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(ScarceMemory::lost(), 0U) << blocks;
  }
  EXPECT_GT(blocks, 3);
}

}  // namespace
}  // namespace Orvane
