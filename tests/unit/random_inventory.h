// Small random inventories in which collisions are frequent.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "plain/plain_inventory.h"

namespace Orvane::test {

class RandomInventory {
 public:
  // Each seed has an alphabet of its own, of a few ids and a few names.
  explicit RandomInventory(std::uint32_t seed) : random_(seed) {
    for (std::uint32_t& id : ids_) id = anyId();
    for (std::string& name : names_) name = anyName();
    usedIds_ = 1 + below(ids_.size());
    usedNames_ = 1 + below(names_.size());
  }

  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool oneIn(std::size_t times) { return below(times) == 0; }

  std::uint32_t id() { return ids_[below(usedIds_)]; }
  std::uint32_t mediaId() { return oneIn(3) ? id() : static_cast<std::uint32_t>(below(40)); }
  std::string name() { return names_[below(usedNames_)]; }
  std::uint32_t rating() { return oneIn(10) ? anyId() : static_cast<std::uint32_t>(below(6)); }

  plain::PlainTrack track() {
    plain::PlainTrack track;
    track.title = name();
    track.mediaId = mediaId();
    track.artistName = name();
    track.artistId = id();
    track.albumName = name();
    track.albumId = id();
    track.genreName = name();
    track.genreId = id();
    track.rating = rating();
    return track;
  }

  // A tracks file and a playlists file, well-formed but for a line here and there.
  std::string tracksFile() {
    std::string file;
    for (std::size_t lines = below(30); lines-- > 0;) file += trackLine() + lineEnd();
    return withOddEnd(file);
  }
  std::string playlistsFile() {
    std::string file;
    for (std::size_t blocks = below(5); blocks-- > 0;) {
      file += name() + lineEnd();
      if (!oneIn(20)) file += number() + lineEnd();
      for (std::size_t entries = below(6); entries-- > 0;) {
        file += (oneIn(15) ? oddLine() : std::to_string(mediaId())) + lineEnd();
      }
      if (!oneIn(20)) file += "-1" + lineEnd();
      if (oneIn(3)) file += lineEnd();
    }
    return withOddEnd(file);
  }

 private:
  std::uint32_t anyId() {
    constexpr std::array<std::uint32_t, 12> kIds{0, 0, 1, 2,          3,          4,
                                                 5, 7, 9, 2147483648, 4294967294, 4294967295};
    return kIds.at(below(kIds.size()));
  }

  std::string anyName() {
    static const std::array<std::string, 24> kNames{"",
                                                    "a",
                                                    "A",
                                                    "b",
                                                    "B",
                                                    "ab",
                                                    "aB",
                                                    "AB",
                                                    "a b",
                                                    "\xC3\xA9",
                                                    "\xE9",
                                                    "\x80",
                                                    "\xFF",
                                                    "\x7F",
                                                    std::string("a\0b", 3),
                                                    std::string("a\0c", 3),
                                                    std::string(1, '\0'),
                                                    " ",
                                                    "Playlists",
                                                    "Artists",
                                                    "Albums",
                                                    "Geners",
                                                    "Songs",
                                                    "a\xFFz"};
    if (!oneIn(4)) return kNames.at(below(kNames.size()));
    std::string name(62 + below(5), oneIn(2) ? 'x' : 'X');
    if (oneIn(4)) name.back() = 'y';
    if (oneIn(8)) name.front() = '\0';
    return name;
  }

  std::string number() {
    constexpr std::array<const char*, 8> kNumbers{" 7", "+3", "4294967296",  "12abc",
                                                  "x",  "-2", "-4294967295", "0009"};
    return oneIn(10) ? kNumbers.at(below(kNumbers.size())) : std::to_string(id());
  }

  std::string trackLine() {
    if (oneIn(20)) return oddLine();
    std::string line = std::to_string(mediaId()) + "|" + name();
    for (int i = 0; i < 3; ++i) line += (oneIn(30) ? "||" : "|") + number() + "|" + name();
    if (oneIn(30)) return line.substr(0, below(line.size() + 1));
    if (!oneIn(4)) line += "|" + std::to_string(static_cast<std::int32_t>(rating()));
    if (oneIn(10)) line += "|more";
    return line;
  }

  std::string oddLine() {
    constexpr std::array<const char*, 8> kLines{"", "words", "|", "||", " -1z", "a|b", "\r", "0"};
    return kLines.at(below(kLines.size()));
  }

  std::string lineEnd() { return oneIn(40) ? "\r\n" : "\n"; }

  // Often without its last line feed, at times cut anywhere.
  std::string withOddEnd(std::string file) {
    if (oneIn(3) && !file.empty()) file.pop_back();
    if (oneIn(10)) file.resize(below(file.size() + 1));
    return file;
  }

  std::mt19937 random_;
  std::array<std::uint32_t, 6> ids_{};
  std::array<std::string, 8> names_;
  std::size_t usedIds_ = 1;
  std::size_t usedNames_ = 1;
};

}  // namespace Orvane::test
