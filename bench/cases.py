"""What is measured: the cases of the comparison with floors and peers, and the growth shapes."""

import hashlib
import os
import shutil
from dataclasses import dataclass
from pathlib import Path

from measure import BenchError, Command, Entry, Limit, run_command

# The Debian package of each peer.
PEER_PACKAGES = {"sqlite3": "sqlite3", "xmllint": "libxml2-utils"}

SQLITE_SCRIPT = """.separator |
create table tracks(media integer, title text, artist integer, artist_name text, album integer,
  album_name text, genre integer, genre_name text, rating integer);
.import {tracks} tracks
create index by_media on tracks(media);
create index by_artist on tracks(artist_name);
create index by_album on tracks(album_name);
create index by_genre on tracks(genre_name);
create index by_rating on tracks(rating);
"""


@dataclass(frozen=True)
class Growth:
    """A shape at size n, and at 4n, where a run takes somewhat under or over a second."""

    shape: str
    size: int
    xml: bool = False


GROWTHS = [
    Growth("library", 200_000),
    Growth("one-artist", 200_000),
    Growth("artists", 200_000),
    Growth("menus-without-ids", 100_000, xml=True),
    Growth("one-genre", 200_000),
    Growth("one-title", 200_000),
    Growth("one-name", 200_000),
    Growth("late-difference", 200_000),
    Growth("one-playlist", 300_000),
    Growth("playlists", 200_000),
    Growth("renamed-ids", 200_000),
    Growth("one-media-id", 400_000),
    Growth("rated", 200_000),
    Growth("long-lines", 60),
]


class Bench:
    """The programs, and the directory for inputs and outputs."""

    def __init__(self, bin_dir, work):
        self.program = bin_dir / "skeinmake"
        self.programs = bin_dir / "bench"
        self.work = work
        self.scratch = work / "scratch"
        self.scratch.mkdir(parents=True, exist_ok=True)
        generator = self.programs / "bench_generate"
        for path in (self.program, generator):
            if not path.is_file():
                raise BenchError(f"{path} is missing: build with -DSKEINMAKE_BUILD_BENCH=ON")
        # Another generator may make other inputs.
        self.generator_hash = hashlib.sha256(generator.read_bytes()).hexdigest()

    def input(self, shape, size):
        """The directory with that input, made if it isn't there yet."""
        directory = self.work / "inputs" / f"{shape}-{size}"
        stamp = directory / "made-by"
        if not stamp.is_file() or stamp.read_text() != self.generator_hash:
            shutil.rmtree(directory, ignore_errors=True)
            directory.mkdir(parents=True)
            argv = (self.programs / "bench_generate", shape, size, directory)
            run_command(Command(argv, silent=True), self.scratch)
            stamp.write_text(self.generator_hash)
        return directory

    def build(self, label, directory, tables=2):
        """The entry for a run of the program on an input, and the file that such a run gives, made
        here so that the input is in memory and there is something to compare with."""
        if (directory / "menu.xml").exists():
            words = ("-x", directory / "menu.xml")
        else:
            words = ("-M", "INVENTORY", "-t", directory / "tracks.txt")
            words += ("-p", directory / "playlists.txt")
        words = (self.program, "-T", tables, *words, "-o")
        made = directory / f"tables-{tables}.inv"
        run_command(Command((*words, made), silent=True), self.scratch)
        with made.open("rb") as file:
            os.fsync(file)  # lest the disk be busy with it later on
        output = self.scratch / "program.inv"
        return Entry(label, [Command((*words, output), silent=True)], output, made), made

    def floor(self, label, directory, made):
        """Reading what the program reads, and writing what it writes."""
        lists = (directory / "tracks.txt", directory / "playlists.txt")
        output = self.scratch / "copy.inv"
        return Entry(label, [Command(("cat", *lists)), Command(("cp", made, output))], output)

    def helper(self, name, *words):
        return Entry(name, [Command((self.programs / name, *words))])

    def peer(self, label, argv, stdin="/dev/null", output=None):
        missing = "" if shutil.which(argv[0]) else PEER_PACKAGES[argv[0]]
        return Entry(label, [Command(argv, stdin=stdin)], output, missing=missing)

    def sqlite(self, directory):
        script = self.scratch / "import.sql"
        script.write_text(SQLITE_SCRIPT.format(tracks=directory / "tracks.txt"))
        database = self.scratch / "tracks.db"
        database.unlink(missing_ok=True)
        argv = ("sqlite3", "-bail", database)
        return self.peer("sqlite3: import, five indexes", argv, str(script), database)


@dataclass(frozen=True)
class Case:
    name: str
    title: str
    rounds: int
    size: int
    quick_size: int
    entries: object  # function of a Bench and a size: the entries, each ratio's base first


def lists_beside_floor(bench, size, factor, megabytes, with_sqlite):
    directory = bench.input("library", size)
    entries = []
    for tables, name in ((2, "two-table"), (1, "one-table")):
        program, made = bench.build(f"skeinmake, {name}", directory, tables)
        floor = bench.floor(f"floor, {name}", directory, made)
        program.limits = [Limit("time", factor, floor), Limit("memory", megabytes)]
        entries += [floor, program]
    if with_sqlite:
        entries.append(bench.sqlite(directory))
    return entries


def million(bench, size):
    return lists_beside_floor(bench, size, 12, 600, with_sqlite=True)


def fifty_thousand(bench, size):
    return lists_beside_floor(bench, size, 10, 45, with_sqlite=False)


def ten_million(bench, size):
    tenth, _ = bench.build("a tenth of it", bench.input("library", size // 10))
    whole, _ = bench.build("skeinmake, two-table", bench.input("library", size))
    whole.limits = [Limit("time", 11, tenth), Limit("memory", 6000)]
    return [tenth, whole]


def xml(bench, size):
    directory = bench.input("menus", size)
    document = directory / "menu.xml"
    xmllint = bench.peer("xmllint", ("xmllint", "--noout", document))
    walk = bench.helper("bench_walk_xml", document)
    walk.label = "libxml++: parsed, walked, freed"
    program, _ = bench.build("skeinmake, XML", directory)
    program.limits = [Limit("time", 1.5, xmllint), Limit("memory", 1.1, xmllint)]
    return [xmllint, walk, program]


def two_thousand(bench, size):
    empty = bench.helper("bench_empty")
    empty.label = "empty program"
    linked = bench.helper("bench_empty_libxmlpp")
    linked.label = "empty program with libxml++"
    program, _ = bench.build("skeinmake, two-table", bench.input("library", size))
    program.limits = [Limit("time", 3, empty)]
    return [empty, linked, program]


CASES = [
    Case("1M", "tracks", 7, 1_000_000, 5_000, million),
    Case("10M", "tracks", 3, 10_000_000, 20_000, ten_million),
    Case("50k", "tracks", 21, 50_000, 5_000, fifty_thousand),
    Case("xml", "XML elements", 7, 655_000, 5_000, xml),
    Case("2k", "tracks, whole process", 201, 2_000, 2_000, two_thousand),
]
