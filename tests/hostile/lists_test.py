"""List files of absurd sizes, and small files that mean the same: the same comes of both."""

from program import HostileTest

MILLION = 1_000_000


def huge(piece: bytes) -> list[bytes]:
    """A hundred million bytes."""
    return [piece * (MILLION // len(piece))] * 100


def track(media_id=b"1", title=b"T", artist=b"A", rating=b"2"):
    return b"|".join([media_id, title, b"7", artist, b"30", b"B", b"4", b"C", rating]) + b"\n"


def playlist(name=b"Mix", number=b"5", entry=b"1"):
    return name + b"\n" + number + b"\n" + entry + b"\n-1\n"


class HugeLines(HostileTest):
    def test_title(self):
        expected = self.read_lists([track(title=b"x" * 65)], [playlist()])
        self.assertEqual(self.read_lists([b"1|", *huge(b"x"), track()[3:]], [playlist()]), expected)

    def test_heading_and_last_line(self):
        expected = self.read_lists([track()], [playlist()])
        self.assertEqual(self.read_lists([*huge(b"x"), b"\n", track(), *huge(b"\0")], [playlist()]),
                         expected)

    def test_field_that_nobody_reads(self):
        expected = self.read_lists([track()], [playlist()])
        self.assertEqual(self.read_lists([track()[:-1], b"|", *huge(b"x"), b"\n"], [playlist()]),
                         expected)

    def test_numbers(self):
        expected = self.read_lists([track(media_id=b"4294967295")], [playlist(number=b"-1")])
        self.assertEqual(self.read_lists([*huge(b"9"), track(media_id=b"")],
                                         [b"Mix\n", *huge(b"9"), playlist()[5:]]), expected)
        expected = self.read_lists([track()], [playlist()])
        self.assertEqual(self.read_lists([*huge(b"0"), track()], [b"Mix\n5\n", *huge(b" "),
                                                                  playlist()[6:]]), expected)

    def test_playlist_name(self):
        expected = self.read_lists([track()], [playlist(name=b"x" * 65)])
        self.assertEqual(self.read_lists([track()], [*huge(b"x"), playlist()[3:]]), expected)


class Separators(HostileTest):
    def test_ten_million_and_nothing_else(self):
        expected = self.read_lists([], [])
        self.assertEqual(self.read_lists(
            [b"|" * (10 * MILLION), b"\n"], [],
            b"tracks.txt:1: expected 8 fields, found 0: line skipped\n"), expected)
        self.assertEqual(self.read_lists([b"\n"] * 3, [b"|" * (10 * MILLION), b"\n"]), expected)

    def test_ten_million_between_fields(self):
        expected = self.read_lists([track()], [playlist()])
        many = track().replace(b"|", b"|" * (10 * MILLION // 8))
        self.assertEqual(self.read_lists([many], [playlist()]), expected)

    def test_ten_million_fields(self):
        expected = self.read_lists([track()], [playlist()])
        self.assertEqual(self.read_lists([track()[:-1], b"|x" * (10 * MILLION), b"\n"],
                                         [playlist()]), expected)

    def test_lines_of_one_each(self):
        lines = 100_000
        complaints = b"".join(b"tracks.txt:%d: expected 8 fields, found 0: line skipped\n" % line
                              for line in range(1, lines + 1))
        expected = self.read_lists([track()], [playlist()])
        self.assertEqual(self.read_lists([b"|\n" * lines, track()], [playlist()], complaints),
                         expected)


class ManyLines(HostileTest):
    def test_ten_million_line_feeds(self):
        expected = self.read_lists([track()], [playlist()])
        feeds = b"\n" * (10 * MILLION)
        self.assertEqual(self.read_lists([feeds, track(), feeds], [feeds, playlist(), feeds]),
                         expected)

    def test_one_track_a_million_times(self):
        expected = self.read_lists([track()], [playlist()])
        self.assertEqual(self.read_lists([track()] * MILLION, [playlist()]), expected)

    def test_a_playlist_that_never_ends(self):
        expected = self.read_lists([track()], [b"Mix\n5\n-1\n"])
        self.assertEqual(self.read_lists(
            [track()], [b"Mix\n5\n", b"2\n" * MILLION],
            b'playlists.txt:%d: playlist "Mix" has no closing -1\n' % (MILLION + 2)), expected)
