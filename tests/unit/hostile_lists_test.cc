// List files that are cut off, damaged or odd in every way that a small file can be, against the
// plain rendering of the same rules: the same bytes in both layouts, the same messages.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "same_as_plain.h"
#include "test_support.h"
#include "wide_text.h"

namespace Orvane::test {
namespace {

constexpr std::string_view kTracks =
    "101|First|7|Singer|30|Record|4|Pop|2\n\nheading\n5|x|\n102|Second|7|Singer|30|Record|4|Pop\n";
constexpr std::string_view kPlaylists = "Mix\n5\n101\n102\n-1\n\nEmpty\n6\n\nOpen\n7\n102\n";

class HostileLists : public ::testing::Test {
 protected:
  void expectSame(std::string_view tracks, std::string_view playlists, bool withPlaylistIds) {
    writeFile(tracks_, tracks);
    writeFile(playlists_, playlists);
    ASSERT_NO_FATAL_FAILURE(expectSameReading(tracks_, playlists_, withPlaylistIds));
  }
  void expectSame(std::string_view tracks, std::string_view playlists) {
    for (const bool withPlaylistIds : {true, false}) {
      ASSERT_NO_FATAL_FAILURE(expectSame(tracks, playlists, withPlaylistIds));
    }
  }

 private:
  const TempDir dir_;
  const std::string tracks_ = dir_ / "tracks.txt";
  const std::string playlists_ = dir_ / "playlists.txt";
};

std::string with(std::string_view text, std::size_t at, std::size_t removed, std::string_view in) {
  return std::string(text).replace(at, removed, in);
}

// All texts of up to `length` characters.
std::vector<std::string> allTexts(std::string_view alphabet, std::size_t length) {
  std::vector<std::string> texts{""};
  for (std::size_t begin = 0; texts.back().size() < length;) {
    const std::size_t end = texts.size();
    for (; begin < end; ++begin) {
      for (const char c : alphabet) texts.push_back(texts[begin] + c);
    }
  }
  return texts;
}

TEST_F(HostileLists, EndAtEveryByte) {
  for (std::size_t size = 0; size <= kTracks.size(); ++size) {
    SCOPED_TRACE("tracks file of " + std::to_string(size) + " bytes");
    ASSERT_NO_FATAL_FAILURE(expectSame(kTracks.substr(0, size), kPlaylists));
  }
  for (std::size_t size = 0; size <= kPlaylists.size(); ++size) {
    SCOPED_TRACE("playlists file of " + std::to_string(size) + " bytes");
    ASSERT_NO_FATAL_FAILURE(expectSame(kTracks, kPlaylists.substr(0, size)));
  }
}

TEST_F(HostileLists, HaveAZeroByteAtEveryPlace) {
  constexpr std::string_view kZero("\0", 1);
  for (const std::size_t removed : {0U, 1U}) {
    for (std::size_t at = 0; at < kTracks.size(); ++at) {
      SCOPED_TRACE("byte " + std::to_string(at) + " of the tracks");
      ASSERT_NO_FATAL_FAILURE(expectSame(with(kTracks, at, removed, kZero), kPlaylists));
    }
    for (std::size_t at = 0; at < kPlaylists.size(); ++at) {
      SCOPED_TRACE("byte " + std::to_string(at) + " of the playlists");
      ASSERT_NO_FATAL_FAILURE(expectSame(kTracks, with(kPlaylists, at, removed, kZero)));
    }
  }
}

TEST_F(HostileLists, HaveEveryByteInEveryField) {
  constexpr std::string_view kNumber = "12";
  for (int value = 0; value < 256; ++value) {
    const std::string byte(1, static_cast<char>(value));
    for (const std::string& piece : {byte, byte + "12", "1" + byte + "2", "12" + byte}) {
      SCOPED_TRACE("'" + piece + "'");
      std::string tracks;
      for (std::size_t changed = 0; changed < 9; ++changed) {
        for (std::size_t field = 0; field < 9; ++field) {
          tracks += field == changed ? piece : kNumber;
          tracks += field == 8 ? '\n' : '|';
        }
      }
      const std::string playlists = piece + "\n12\n12\n-1\nA\n" + piece + "\n12\n-1\nB\n12\n12\n" +
                                    piece + "\n12\n-1" + byte + "\nC\n12\n" + byte + "-1\n-1\n";
      ASSERT_NO_FATAL_FAILURE(expectSame(tracks, playlists));
    }
  }
}

TEST_F(HostileLists, HaveNumbersAtEveryEdge) {
  std::string tracks;
  std::string playlists = "Edges\n1\n";
  std::string more;
  for (const std::string digits :
       {"0", "1", "2147483647", "2147483648", "2147483649", "4294967294", "4294967295",
        "4294967296", "4294967297", "9223372036854775806", "9223372036854775807",
        "9223372036854775808", "18446744073709551614", "18446744073709551615",
        "18446744073709551616", "18446744073709551617", "99999999999999999999999999999999999"}) {
    for (const std::string before : {"", "-", "+", " ", "\t-", "000", "-0000000000000000000000"}) {
      const std::string number = before + digits;
      tracks += number + "|T" + number + "|" + number + "|A|" + number + "|B|" + number + "|C|" +
                number + "\n";
      tracks += "7|T" + number + "|" + number + "|A" + number + "|" + number + "|B" + number + "|" +
                number + "|C" + number + "|3\n";
      // One that closes a list ends in it.
      playlists += number + "\n";
      more += "P" + number + "\n" + number + "\n7\n" + number + "\n-1\n";
    }
  }
  playlists += "-1\n";
  ASSERT_NO_FATAL_FAILURE(expectSame(tracks, playlists + more));
  ASSERT_NO_FATAL_FAILURE(expectSame(tracks, more + playlists));
}

TEST_F(HostileLists, AreInWideCharactersOrHaveAMark) {
  for (const std::string_view mark : {"", "\xEF\xBB\xBF", "\xFE\xFF", "\xFF\xFE"}) {
    ASSERT_NO_FATAL_FAILURE(
        expectSame(std::string(mark) += kTracks, std::string(mark) += kPlaylists));
    for (const std::size_t width : {2U, 4U}) {
      for (const bool bigEndian : {true, false}) {
        ASSERT_NO_FATAL_FAILURE(expectSame(std::string(mark) + wide(kTracks, width, bigEndian),
                                           std::string(mark) + wide(kPlaylists, width, bigEndian)));
      }
    }
  }
}

TEST_F(HostileLists, AreAnyShortText) {
  const std::string track = "1|T|1|A|1|B|1|C\n";
  for (const std::string& text : allTexts(std::string_view("1|\n\0-", 5), 4)) {
    ASSERT_NO_FATAL_FAILURE(expectSame(text, "P\n1\n1\n-1\n", true)) << text;
    ASSERT_NO_FATAL_FAILURE(expectSame(track + text + track, "P\n1\n1\n-1\n", true)) << text;
  }
  for (const std::string& text : allTexts(std::string_view("1\n-\0 ", 5), 4)) {
    ASSERT_NO_FATAL_FAILURE(expectSame(track, text)) << text;
    ASSERT_NO_FATAL_FAILURE(expectSame(track, "P\n" + text)) << text;
    ASSERT_NO_FATAL_FAILURE(expectSame(track, "P\n1\n1\n" + text + "1\n-1\nQ\n1\n\n", true))
        << text;
  }
}

TEST_F(HostileLists, HaveLinesOfEveryNumberOfFields) {
  std::string tracks;
  for (std::size_t fields = 0; fields < 20; ++fields) {
    for (const std::string separator : {"|", "||", "|||||||||||"}) {
      std::string line = separator;
      for (std::size_t field = 0; field < fields; ++field) {
        line += std::to_string(field + 1) + separator;
      }
      tracks += line + "\n" + line.substr(separator.size()) + "\n" +
                line.substr(0, line.size() - separator.size()) + "\n";
    }
  }
  ASSERT_NO_FATAL_FAILURE(expectSame(tracks, kPlaylists));
}

}  // namespace
}  // namespace Orvane::test
