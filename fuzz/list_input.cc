#include "list_input.h"

#include <sstream>

#include "fail.h"

namespace Orvane::fuzz {
namespace {

constexpr std::size_t kLongestPiece = 64;

// Takes the line that `text` begins with off it.
std::string_view takeLine(std::string_view& text) {
  const std::size_t length = text.find('\n');
  const std::string_view line = text.substr(0, length);
  text.remove_prefix(length == std::string_view::npos ? text.size() : length + 1);
  return line;
}

}  // namespace

ListInput::ListInput(std::span<const std::uint8_t> bytes) {
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  word = takeLine(text);
  if (!word.empty()) {
    flags = static_cast<unsigned char>(word.front()) & 0xFU;
    word.remove_prefix(1);
  }
  constexpr std::string_view kBetween = "%%\n";
  std::size_t end = 0;
  while (end < text.size() && text.substr(end, kBetween.size()) != kBetween) {
    const std::size_t length = text.substr(end).find('\n');
    end = length == std::string_view::npos ? text.size() : end + length + 1;
  }
  tracks = text.substr(0, end);
  if (end < text.size()) playlists = text.substr(end + kBetween.size());
}

ServedFile ServedLists::serve(const ListInput& input, std::string_view content, Reads reads) {
  if (reads == Reads::kWhole) return ServedFile::whole(content);
  const std::size_t piece =
      input.word.empty() ? 0 : static_cast<unsigned char>(input.word.front()) % kLongestPiece;
  return ServedFile::inPieces(content, piece + 1);
}

ServedLists::ServedLists(const ListInput& input, Reads reads)
    : input_(input),
      tracks_(serve(input, input.tracks, reads)),
      playlists_(serve(input, input.playlists, reads)) {}

const char* ServedLists::tracksPath() const {
  return hasTracks_ ? tracks_.path() : "/proc/self/fd";
}

const char* ServedLists::playlistsPath() const {
  return hasPlaylists_ ? playlists_.path() : "/proc/self/fd/none";
}

plain::PlainReading ServedLists::readPlainly(plain::PlainInventory& inventory,
                                             bool withPlaylistIds) const {
  std::istringstream tracks{std::string(input_.tracks)};
  std::istringstream playlists{std::string(input_.playlists)};
  return plain::plainReadLists(inventory, hasTracks_ ? &tracks : nullptr, tracksPath(),
                               hasPlaylists_ ? &playlists : nullptr, playlistsPath(),
                               withPlaylistIds);
}

void requireSaid(const plain::PlainReading& plain, std::string_view output,
                 std::string_view complaints) {
  require(output == plain.output, "standard output differs");
  for (const std::string& place : plain.complaints) {
    const std::string_view line = takeLine(complaints);
    if (line.substr(0, place.size()) != place) {
      fail("expected a complaint about " + place + " but got " + std::string(line));
    }
    for (const char c : line) {
      require(static_cast<unsigned char>(c) >= ' ' && c != 0x7F, "a complaint is not printable");
    }
  }
  require(complaints.empty(), "a complaint too many");
}

}  // namespace Orvane::fuzz
