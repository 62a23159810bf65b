#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "plain/plain_list_files.h"
#include "served_file.h"

namespace Orvane::fuzz {

// How the fuzzers of list files take an input: a character whose lowest four bits are `flags` (so
// a digit, or ':' to '?'), the rest of its line as `word`, the tracks file, and, after the first
// line that is "%%", the playlists file.
struct ListInput {
  explicit ListInput(std::span<const std::uint8_t> bytes);

  unsigned flags = 0;
  std::string_view word;
  std::string_view tracks;
  std::string_view playlists;
};

// The two files where a reader finds them by their paths, and what the plain reader makes of them.
class ServedLists {
 public:
  enum class Reads { kWhole, kInPieces };

  // The pieces are 1 to 64 bytes long, by what the input's word begins with.
  ServedLists(const ListInput& input, Reads reads);

  // "Missing" is, of the tracks file, a folder; of the playlists file, a name that nothing has.
  void hideTracks() { hasTracks_ = false; }
  void hidePlaylists() { hasPlaylists_ = false; }

  const char* tracksPath() const;
  const char* playlistsPath() const;

  plain::PlainReading readPlainly(plain::PlainInventory& inventory, bool withPlaylistIds) const;

 private:
  static ServedFile serve(const ListInput& input, std::string_view content, Reads reads);

  ListInput input_;
  ServedFile tracks_;
  ServedFile playlists_;
  bool hasTracks_ = true;
  bool hasPlaylists_ = true;
};

// Aborts unless the reader said what it should: `output` on standard output, and on standard error
// a line for each complaint that begins with the place.
void requireSaid(const plain::PlainReading& plain, std::string_view output,
                 std::string_view complaints);

}  // namespace Orvane::fuzz
