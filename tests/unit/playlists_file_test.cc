#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "list_reading.h"

namespace Orvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Tracks 1 to 3 with the titles a to c, and c2 with the id of c.
constexpr std::string_view kTracks =
    "1|a|2|A|3|B|4|C\n"
    "2|b|2|A|3|B|4|C\n"
    "3|c|2|A|3|B|4|C\n"
    "3|c2|2|A|3|B|4|C\n";

ListReading withIds(std::string_view playlists) {
  return readLists(kTracks, playlists, true);
}
ListReading withoutIds(std::string_view playlists) {
  return readLists(kTracks, playlists, false);
}

TEST(PlaylistsFile, GivesNameIdAndTracks) {
  const ListReading reading = withIds("Road Mix\n5\n2\n1\n2\n-1\n\n\nOther\n6\n1\n-1\n");
  EXPECT_THAT(reading.playlists(), ElementsAre("5 'Road Mix' b a b", "6 'Other' a"));
  EXPECT_EQ(reading.output, "");
  EXPECT_EQ(reading.complaints, "");
}

TEST(PlaylistsFile, WithoutIdsTheSecondLineIsATrack) {
  EXPECT_THAT(withoutIds("Road Mix\n2\n1\n-1\nOther\n3\n-1\n").playlists(),
              ElementsAre("0 'Road Mix' b a", "0 'Other' c2"));
}

TEST(PlaylistsFile, EntryMeansTheLastTrackOfItsId) {
  const ListReading reading = withIds("Mix\n5\n3\n-1\n");
  EXPECT_THAT(reading.playlists(), ElementsAre("5 'Mix' c2"));
  EXPECT_EQ(reading.manager->findTrack(3)->getTitle(), "c");
}

TEST(PlaylistsFile, UnknownIdsAreIgnored) {
  EXPECT_THAT(withIds("Mix\n5\n9\n1\n\nwords\n 2x\n-2\n-1\n").playlists(),
              ElementsAre("5 'Mix' a b"));
}

TEST(PlaylistsFile, BlankAndTextLinesStandForIdZero) {
  const ListReading reading = readLists("0|zero|2|A|3|B|4|C\n", "Mix\n5\nwords\n\n0\n-1\n", true);
  EXPECT_THAT(reading.playlists(), ElementsAre("5 'Mix' zero zero zero"));
}

TEST(PlaylistsFile, EmptyReadAtTheEndIsNoLine) {
  const ListReading reading = readLists("0|zero|2|A|3|B|4|C\n", "Mix\n5\n0\n", true);
  EXPECT_THAT(reading.playlists(), ElementsAre("5 'Mix' zero"));
  EXPECT_EQ(reading.complaints, "playlists.txt:3: playlist \"Mix\" has no closing -1\n");
}

TEST(PlaylistsFile, AnyFormOfMinusOneCloses) {
  EXPECT_THAT(withIds("A\n1\n1\n -1z\nB\n2\n2\n4294967295\nC\n3\n-1\nD\n4\n1\n-01\n").playlists(),
              ElementsAre("1 'A' a", "2 'B' b", "3 'C'", "4 'D' a"));
}

TEST(PlaylistsFile, MinusOneNeedsNoLineFeed) {
  const ListReading reading = withIds("Mix\n5\n1\n-1");
  EXPECT_THAT(reading.playlists(), ElementsAre("5 'Mix' a"));
  EXPECT_EQ(reading.complaints, "");
}

TEST(PlaylistsFile, MinusOneAsAnIdIsAnId) {
  EXPECT_THAT(withIds("Mix\n-1\n1\n-1\n").playlists(), ElementsAre("4294967295 'Mix' a"));
}

TEST(PlaylistsFile, EmptyIdLineDropsTheName) {
  EXPECT_THAT(withIds("Dropped\n\nMix\n5\n1\n-1\n").playlists(), ElementsAre("5 'Mix' a"));
  EXPECT_THAT(withIds("Dropped\n\n\n\nMix\n5\n1\n-1\n").playlists(), ElementsAre("5 'Mix' a"));
}

TEST(PlaylistsFile, IdLineWithoutANumberIsZero) {
  EXPECT_THAT(withIds("Mix\n \n1\n-1\n").playlists(), ElementsAre("0 'Mix' a"));
}

TEST(PlaylistsFile, BlankLineAfterTheHeaderEndsTheBlock) {
  // What follows is read as names and ids: "1" with id 2, then "-1" with id -1.
  const ListReading reading = withIds("Mix\n5\n\n1\n2\n-1\n-1\n-1\n\n");
  EXPECT_THAT(reading.playlists(), ElementsAre("5 'Mix'", "2 '1'", "4294967295 '-1'"));
  EXPECT_THAT(withIds("Mix\n5\n\n1\n2\n3\n-1\nNext\n7\n1\n-1\n").playlists(),
              ElementsAre("5 'Mix'", "2 '1' c2", "7 'Next' a"));
  EXPECT_THAT(withoutIds("Mix\n\n1\n2\n-1\n").playlists(), ElementsAre("0 'Mix'", "0 '1' b"));
}

TEST(PlaylistsFile, LastNameWithoutALineFeedIsDropped) {
  EXPECT_THAT(withIds("Mix\n5\n1\n-1\nDropped").playlists(), ElementsAre("5 'Mix' a"));
  EXPECT_THAT(withoutIds("Dropped").playlists(), IsEmpty());
}

TEST(PlaylistsFile, NameWithoutAnIdLineIsDropped) {
  const ListReading reading = withIds("Dropped\n");
  EXPECT_THAT(reading.playlists(), IsEmpty());
  EXPECT_EQ(reading.complaints, "");
}

TEST(PlaylistsFile, IdLineAtTheEndMakesAnEmptyPlaylist) {
  EXPECT_THAT(withIds("Mix\n5").playlists(), ElementsAre("5 'Mix'"));
  EXPECT_THAT(withIds("Mix\n5\n").playlists(), ElementsAre("5 'Mix'"));
  EXPECT_EQ(withIds("Mix\n5").complaints, "");
  EXPECT_EQ(withIds("Mix\n5\n").complaints, "");
}

TEST(PlaylistsFile, NameAloneMakesAnEmptyPlaylistWithoutIds) {
  const ListReading reading = withoutIds("Mix\n");
  EXPECT_THAT(reading.playlists(), ElementsAre("0 'Mix'"));
  EXPECT_EQ(reading.complaints, "");
}

TEST(PlaylistsFile, BlockCutShortHasTheTracksUpToThere) {
  const ListReading terminated = withIds("Mix\n5\n1\n2\n");
  EXPECT_THAT(terminated.playlists(), ElementsAre("5 'Mix' a b"));
  EXPECT_EQ(terminated.complaints, "playlists.txt:4: playlist \"Mix\" has no closing -1\n");
  EXPECT_EQ(terminated.output, "");
  const ListReading unterminated = withIds("Mix\n5\n1\n2");
  EXPECT_THAT(unterminated.playlists(), ElementsAre("5 'Mix' a b"));
  EXPECT_EQ(unterminated.complaints, "playlists.txt:4: playlist \"Mix\" has no closing -1\n");
}

TEST(PlaylistsFile, NameInAComplaintIsPrintable) {
  EXPECT_EQ(withIds("M\\\t\xE9\n5\n1").complaints,
            "playlists.txt:3: playlist \"M\\\\\\x09\\xE9\" has no closing -1\n");
}

TEST(PlaylistsFile, CarriageReturnsStayInNames) {
  // No line is empty then, so the blank one between the blocks is a name.
  EXPECT_THAT(withIds("Mix\r\n5\r\n1\r\n-1\r\n\r\n6\r\n2\r\n-1\r\n").playlists(),
              ElementsAre("5 'Mix\r' a", "6 '\r' b"));
}

TEST(PlaylistsFile, EqualPlaylistsAreNotMerged) {
  EXPECT_THAT(withIds("Mix\n5\n1\n-1\nMix\n5\n2\n-1\n").playlists(),
              ElementsAre("5 'Mix' a", "5 'Mix' b"));
}

TEST(PlaylistsFile, NamesMayBeAnyBytes) {
  const std::string name("a\0\xFF|", 4);
  EXPECT_THAT(withIds(name + "\n5\n1\n-1\n").playlists(), ElementsAre("5 '" + name + "' a"));
}

TEST(PlaylistsFile, EmptyFileHasNone) {
  EXPECT_THAT(withIds("").playlists(), IsEmpty());
  EXPECT_THAT(withIds("\n\n\n").playlists(), IsEmpty());
  EXPECT_EQ(withIds("\n").complaints, "");
}

TEST(PlaylistsFile, WithoutTracksAllPlaylistsAreEmpty) {
  EXPECT_THAT(readLists(kMissing, "Mix\n5\n1\n2\n-1\n", true).playlists(), ElementsAre("5 'Mix'"));
}

}  // namespace
}  // namespace Orvane::test
