#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "reader/text_escape.h"
#include "skein/common_options.h"
#include "skein/json_writer.h"
#include "skein/output_buffer.h"
#include "skein/output_file.h"

namespace Orvane {
namespace {

// Refuses everything from the n-th piece on.
class FailingSink : public ByteSink {
 public:
  explicit FailingSink(int pieces) : pieces_(pieces) {}
  bool put(std::string_view) override {
    ++calls;
    return --pieces_ >= 0;
  }
  int calls = 0;

 private:
  int pieces_;
};

// Notes how much it is given at a time.
class PieceSizes : public ByteSink {
 public:
  bool put(std::string_view bytes) override {
    sizes.push_back(bytes.size());
    return true;
  }
  std::vector<std::size_t> sizes;
};

// Puts `text` on standard input as a pipe, for as long as the object lives.
class PipedInput {
 public:
  explicit PipedInput(const std::string& text) : saved_(::dup(STDIN_FILENO)) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    EXPECT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    EXPECT_EQ(::dup2(ends[0], STDIN_FILENO), STDIN_FILENO);
    ::close(ends[0]);
    ::close(ends[1]);
  }
  PipedInput(const PipedInput&) = delete;
  PipedInput& operator=(const PipedInput&) = delete;
  ~PipedInput() {
    ::dup2(saved_, STDIN_FILENO);
    ::close(saved_);
  }

 private:
  int saved_;
};

TEST(CommonOptions, ReadsAListFromStandardInput) {
  CommonOptions lines;
  {
    const PipedInput input("a.inv\nb c.inv\n\nd.inv");
    addFile(lines, "@-");
  }
  EXPECT_EQ(lines.files, (std::vector<std::string>{"a.inv", "b c.inv", "d.inv"}));
  CommonOptions zeros;
  addFile(zeros, "-");
  {
    const PipedInput input(std::string("a\nb\0c\0", 6));
    addFile(zeros, "@-");
  }
  EXPECT_EQ(zeros.files, (std::vector<std::string>{"-", "a\nb", "c"}));
}

// The lowest descriptor that is free, which the next file to be opened gets.
int nextDescriptor() {
  const int next = ::dup(STDIN_FILENO);
  ::close(next);
  return next;
}

TEST(CommonOptions, ClosesAList) {
  const int next = nextDescriptor();
  CommonOptions options;
  addFile(options, "@/dev/null");
  EXPECT_EQ(nextDescriptor(), next);
  EXPECT_TRUE(options.files.empty());
}

TEST(OutputBuffer, HandsOnEverythingInOrder) {
  StringSink sink;
  OutputBuffer out(sink);
  std::string expected;
  for (int i = 0; i < 50000; ++i) {
    out.number(static_cast<std::uint64_t>(i));
    out.put(' ');
    out.hex(static_cast<std::uint64_t>(i), 6);
    out.put("|");
    char text[32];
    EXPECT_GT(std::snprintf(text, sizeof text, "%d %06x|", i, static_cast<unsigned>(i)), 0);
    expected += text;
  }
  out.put(std::string(300000, 'x'));
  out.fill('y', 200000);
  expected += std::string(300000, 'x') + std::string(200000, 'y');
  out.number(0xFFFFFFFFFFFFFFFF);
  expected += "18446744073709551615";
  EXPECT_TRUE(out.flush());
  EXPECT_TRUE(sink.text() == expected);
}

TEST(OutputBuffer, HandsOnLargePiecesOnly) {
  constexpr std::size_t kCapacity = std::size_t{1} << 17;
  using Sizes = std::vector<std::size_t>;
  PieceSizes sink;
  OutputBuffer out(sink);
  EXPECT_TRUE(out.flush());
  out.hex(0xAB, 4);
  out.number(5);
  out.put('x');
  out.put("yz");
  EXPECT_EQ(sink.sizes, Sizes{});
  out.put(std::string(kCapacity, 'x'));
  EXPECT_EQ(sink.sizes, Sizes{8});
  out.put(std::string(kCapacity + 1, 'x'));
  EXPECT_EQ(sink.sizes, (Sizes{8, kCapacity, kCapacity + 1}));
  out.fill('x', kCapacity - 2);
  out.hex(0xAB, 2);
  EXPECT_EQ(sink.sizes.size(), 3U);
  out.put('x');
  EXPECT_EQ(sink.sizes, (Sizes{8, kCapacity, kCapacity + 1, kCapacity}));
}

TEST(OutputBuffer, KeepsToTheFirstFailure) {
  FailingSink sink(1);
  OutputBuffer out(sink);
  out.put("a");
  EXPECT_TRUE(out.flush());
  out.put("b");
  EXPECT_FALSE(out.flush());
  EXPECT_TRUE(out.failed());
  out.put(std::string(500000, 'c'));
  out.fill('d', 500000);
  EXPECT_FALSE(out.flush());
  EXPECT_EQ(sink.calls, 2);
}

TEST(FdSink, TellsWhyAWriteFailed) {
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_GE(full, 0);
  FdSink sink(full);
  EXPECT_FALSE(sink.put("x"));
  EXPECT_EQ(sink.error(), ENOSPC);
  ::close(full);
}

template <typename Write>
std::string jsonOf(const Write& write) {
  StringSink sink;
  OutputBuffer out(sink);
  JsonWriter json(out);
  write(json);
  out.flush();
  return sink.text();
}

TEST(JsonWriter, SetsCommasWhereTheyBelong) {
  EXPECT_EQ(jsonOf([](JsonWriter& json) {
              json.beginObject();
              json.field("a", 1);
              json.key("b");
              json.beginArray();
              json.null();
              json.boolean(true);
              json.beginObject();
              json.endObject();
              json.beginArray();
              json.endArray();
              json.number(18446744073709551615U);
              json.endArray();
              json.field("c", "d");
              json.endObject();
              json.endLine();
              json.beginObject();
              json.endObject();
              json.endLine();
            }),
            "{\"a\":1,\"b\":[null,true,{},[],18446744073709551615],\"c\":\"d\"}\n{}\n");
}

TEST(JsonWriter, EscapesWhatJsonCannotHold) {
  std::string all;
  for (int i = 0; i < 128; ++i) all += static_cast<char>(i);
  const std::string text = all + "\xC3\xA9\xF0\x9F\x8E\xB5";
  const std::string quoted = jsonOf([&](JsonWriter& json) { json.string(text); });
  EXPECT_EQ(nlohmann::json::parse(quoted).get<std::string>(), text);
  EXPECT_EQ(jsonOf([](JsonWriter& json) { json.string("a\"b\\c\n\x1F\x7F"); }),
            "\"a\\\"b\\\\c\\u000a\\u001f\x7F\"");
}

TEST(JsonWriter, LosesNothingOfANameThatIsNoText) {
  const auto nameJson = [](std::string_view shown, std::string_view all) {
    return jsonOf([&](JsonWriter& json) {
      json.beginObject();
      json.nameField("name", shown, all);
      json.endObject();
    });
  };
  EXPECT_EQ(nameJson("Caf\xC3\xA9", "Caf\xC3\xA9"), "{\"name\":\"Caf\xC3\xA9\"}");
  EXPECT_EQ(nameJson("a\xFF\\", "a\xFF\\"), "{\"name\":\"a\\\\xFF\\\\\\\\\",\"bytes\":\"61ff5c\"}");
  EXPECT_EQ(nameJson("a", std::string_view("a\0b", 3)), "{\"name\":\"a\",\"bytes\":\"610062\"}");
}

class OutputFileTest : public testing::Test {
 protected:
  OutputFileTest() : folder_(testing::TempDir() + "output.XXXXXX") {
    EXPECT_NE(::mkdtemp(folder_.data()), nullptr);
  }
  ~OutputFileTest() override { std::filesystem::remove_all(folder_); }

  std::string file(const std::string& name) const { return folder_ + "/" + name; }
  static std::string contentOf(const std::string& name) {
    std::ifstream in(name);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  std::size_t files() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder_), {}));
  }

  std::string folder_;
  std::string error_;
};

TEST_F(OutputFileTest, IsThereWhenCommitted) {
  std::ofstream(file("out")) << "old";
  const mode_t mask = ::umask(027);
  const auto output = OutputFile::create(file("out"), file("in"), error_);
  ::umask(mask);
  ASSERT_NE(output, nullptr) << error_;
  EXPECT_TRUE(output->sink().put("new"));
  EXPECT_EQ(contentOf(file("out")), "old");
  EXPECT_TRUE(output->commit(error_)) << error_;
  EXPECT_EQ(error_, "");
  EXPECT_EQ(contentOf(file("out")), "new");
  EXPECT_EQ(files(), 1U);
  struct stat status {};
  ASSERT_EQ(::stat(file("out").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST_F(OutputFileTest, LeavesNothingWhenNotCommitted) {
  const int next = nextDescriptor();
  {
    const auto output = OutputFile::create(file("out"), file("in"), error_);
    ASSERT_NE(output, nullptr) << error_;
    EXPECT_EQ(files(), 1U);
  }
  EXPECT_EQ(files(), 0U);
  EXPECT_EQ(nextDescriptor(), next);
}

TEST_F(OutputFileTest, TouchesNothingAfterItWasCommitted) {
  auto output = OutputFile::create(file("out"), file("in"), error_);
  ASSERT_NE(output, nullptr) << error_;
  EXPECT_TRUE(output->commit(error_)) << error_;
  errno = 0;
  output.reset();
  EXPECT_EQ(errno, 0) << "a descriptor or a file that isn't there was asked for";
}

TEST_F(OutputFileTest, IsNotTheInput) {
  std::ofstream(file("in")) << "precious";
  std::filesystem::create_hard_link(file("in"), file("link"));
  EXPECT_EQ(OutputFile::create(file("link"), file("in"), error_), nullptr);
  EXPECT_EQ(error_, "is the input, which would be overwritten");
  EXPECT_EQ(contentOf(file("in")), "precious");
  EXPECT_EQ(files(), 2U);
}

TEST_F(OutputFileTest, SaysWhyItCannotBe) {
  EXPECT_EQ(OutputFile::create(file("no/such/folder"), file("in"), error_), nullptr);
  EXPECT_EQ(error_, "No such file or directory");
}

TEST_F(OutputFileTest, WritesToADeviceDirectly) {
  const auto output = OutputFile::create("/dev/full", file("in"), error_);
  ASSERT_NE(output, nullptr) << error_;
  EXPECT_FALSE(output->sink().put("x"));
  EXPECT_FALSE(output->commit(error_));
  EXPECT_EQ(error_, "No space left on device");
  EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST_F(OutputFileTest, ADeviceStaysADevice) {
  const auto output = OutputFile::create("/dev/null", file("in"), error_);
  ASSERT_NE(output, nullptr) << error_;
  EXPECT_TRUE(output->sink().put("x"));
  EXPECT_TRUE(output->commit(error_)) << error_;
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(OutputFileTest, MayReplaceAnyFileButTheInput) {
  std::ofstream(file("in")) << "precious";
  std::ofstream(file("out")) << "old";
  EXPECT_NE(OutputFile::create(file("out"), file("in"), error_), nullptr) << error_;
  EXPECT_NE(OutputFile::create(file("out"), "/proc/self/status", error_), nullptr) << error_;
  EXPECT_NE(OutputFile::create(file("out"), file("missing"), error_), nullptr) << error_;
  const int saved = ::dup(STDIN_FILENO);
  const int in = ::open(file("in").c_str(), O_RDONLY | O_CLOEXEC);
  ::dup2(in, STDIN_FILENO);
  EXPECT_EQ(OutputFile::create(file("in"), "-", error_), nullptr);
  EXPECT_NE(OutputFile::create(file("out"), "-", error_), nullptr) << error_;
  ::dup2(saved, STDIN_FILENO);
  ::close(saved);
  ::close(in);
}

TEST_F(OutputFileTest, SaysWhyItCannotTakeItsPlace) {
  const auto output = OutputFile::create(file("out"), file("in"), error_);
  ASSERT_NE(output, nullptr) << error_;
  std::filesystem::create_directory(file("out"));
  EXPECT_FALSE(output->commit(error_));
  EXPECT_EQ(error_, "Is a directory");
  EXPECT_TRUE(std::filesystem::is_directory(file("out")));
}

// A file's descriptor is the lowest that is free; one taken away from it can't be closed.
TEST_F(OutputFileTest, TellsTheFirstFailure) {
  const int next = nextDescriptor();
  for (const bool written : {false, true}) {
    const auto output = OutputFile::create(file("out"), file("in"), error_);
    ASSERT_NE(output, nullptr) << error_;
    ::close(next);
    if (written) {
      const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
      ASSERT_EQ(full, next);
      EXPECT_FALSE(output->sink().put("x"));
      ::close(full);
    }
    EXPECT_FALSE(output->commit(error_));
    EXPECT_EQ(error_, written ? "No space left on device" : "Bad file descriptor");
    EXPECT_FALSE(std::filesystem::exists(file("out")));
  }
}

}  // namespace
}  // namespace Orvane
