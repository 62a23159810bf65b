#include "skein/common_options.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "reader/text_escape.h"
#include "skein/exit_status.h"
#include "skein/version.h"

namespace Orvane {
namespace {

enum Key : int { kHelp = '?', kUsage = 1000, kVersion, kColor, kFilesFrom, kFormat, kJson };

constexpr argp_option option(const char* name, int key, const char* arg, const char* doc,
                             int flags = 0, int group = 0) {
  return {name, key, arg, flags, doc, group};
}

constexpr argp_option kCommonTable[] = {
    option("quiet", 'q', nullptr, "Drop warnings"),
    option("verbose", 'v', nullptr, "Say also what is well"),
    option("color", kColor, "WHEN", "Colour the text: auto (on a terminal), always or never"),
    option("files-from", kFilesFrom, "LIST",
           "Take files from LIST too, one a line or separated by zero bytes; @LIST does the same, "
           "and - "
           "is standard input"),
    option("help", kHelp, nullptr, "Give this help list", 0, -1),
    option("usage", kUsage, nullptr, "Give a short usage message", 0, -1),
    option("version", kVersion, nullptr, "Print program and format version", 0, -1),
    {},
};

constexpr argp_option kFormatTable[] = {
    option("format", kFormat, "FORMAT", "Print text (the default), json or jsonl"),
    option("json", kJson, nullptr, "The same as --format=json"),
    {},
};

// Ends the run after text on standard output, which may have failed to get there.
[[noreturn]] void endOfText() {
  std::exit(textWritten() || errno == EPIPE ? kStatusYes : kStatusTrouble);
}

void setColor(argp_state* state, CommonOptions& options, std::string_view when) {
  if (when == "auto") {
    options.color = ColorChoice::kAuto;
  } else if (when == "always") {
    options.color = ColorChoice::kAlways;
  } else if (when == "never") {
    options.color = ColorChoice::kNever;
  } else {
    argp_error(state, "--color takes auto, always or never, not '%s'", escaped(when).c_str());
  }
}

void setFormat(argp_state* state, CommonOptions& options, std::string_view format) {
  if (format == "text") {
    options.format = Format::kText;
  } else if (format == "json") {
    options.format = Format::kJson;
  } else if (format == "jsonl") {
    options.format = Format::kJsonLines;
  } else {
    argp_error(state, "--format takes text, json or jsonl, not '%s'", escaped(format).c_str());
  }
}

// False, with errno set, if not all of file `list` ("-" is standard input) could be read.
bool readList(const std::string& list, std::string& text) {
  const bool standardInput = list == "-";
  const int fd = standardInput ? STDIN_FILENO : ::open(list.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  std::array<char, 4096> piece;
  ssize_t got = 0;
  do {
    got = ::read(fd, piece.data(), piece.size());
    if (got > 0) text.append(piece.data(), static_cast<std::size_t>(got));
  } while (got > 0 || (got < 0 && errno == EINTR));
  const int failure = errno;
  if (!standardInput) ::close(fd);
  errno = failure;
  return got == 0;
}

void addFilesFrom(CommonOptions& options, const std::string& list) {
  std::string text;
  if (!readList(list, text)) {
    const std::string reason = std::generic_category().message(errno);
    static_cast<void>(
        std::fprintf(stderr, "skein: %s: error: %s\n", escaped(list).c_str(), reason.c_str()));
    std::exit(kStatusTrouble);
  }
  const char separator = text.find('\0') == std::string::npos ? '\n' : '\0';
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    if (end != begin) options.files.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
}

error_t parseCommon(int key, char* arg, argp_state* state) {
  auto* input = static_cast<VerbInput*>(state->input);
  switch (key) {
    case 'q':
      input->common.quiet = true;
      return 0;
    case 'v':
      input->common.verbose = true;
      return 0;
    case kColor:
      setColor(state, input->common, arg);
      return 0;
    case kFilesFrom:
      addFilesFrom(input->common, arg);
      return 0;
    case kHelp:
      printHelp(state, input->help);
    case kUsage:
      argp_state_help(state, stdout, ARGP_HELP_USAGE);
      endOfText();
    case kVersion:
      printVersion();
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

error_t parseFormat(int key, char* arg, argp_state* state) {
  auto* input = static_cast<VerbInput*>(state->input);
  switch (key) {
    case kFormat:
      setFormat(state, input->common, arg);
      return 0;
    case kJson:
      input->common.format = Format::kJson;
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

}  // namespace

const struct argp kCommonArgp = {kCommonTable, parseCommon, nullptr, nullptr,
                                 nullptr,      nullptr,     nullptr};
const struct argp kFormatArgp = {kFormatTable, parseFormat, nullptr, nullptr,
                                 nullptr,      nullptr,     nullptr};

bool textWritten() {
  // What goes wrong here, too, stays with the stream.
  static_cast<void>(std::fflush(stdout));
  return std::ferror(stdout) == 0;
}

void initChildren(argp_state* state, VerbInput& input, std::size_t count) {
  std::fill_n(state->child_inputs, count, &input);
}

void addFile(CommonOptions& options, std::string_view word) {
  if (word.size() > 1 && word.front() == '@') {
    addFilesFrom(options, std::string(word.substr(1)));
  } else {
    options.files.emplace_back(word);
  }
}

std::uint32_t parseNumber(argp_state* state, const char* option, const char* text) {
  std::uint32_t value = 0;
  const char* const end = text + std::strlen(text);
  const auto result = std::from_chars(text, end, value);
  if (result.ec != std::errc{} || result.ptr != end) {
    argp_error(state, "%s takes a number from 0 to 4294967295, not '%s'", option,
               escaped(text).c_str());
  }
  return value;
}

void printHelp(argp_state* state, const VerbHelp& help) {
  std::printf("%s: %s\n\nExamples:\n%s\n", state->name, help.purpose, help.examples);
  argp_state_help(state, stdout, ARGP_HELP_USAGE | ARGP_HELP_LONG | ARGP_HELP_POST_DOC);
  endOfText();
}

void printVersion() {
  std::printf("skein %s\ninventory format %u\n", kSkeinVersion, kInventoryFormatVersion);
  endOfText();
}

}  // namespace Orvane
