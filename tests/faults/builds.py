"""The builds under test: both modes, both layouts, several sizes."""

import re
import struct
from pathlib import Path

import inputs
from bench import Bench, Build

LAYOUTS = ("1", "2")
# Options that give the command line something to do in both modes.
COMMON = ["-r", "A root name of more than sixty-four bytes, of which some bytes are left out",
          "-b", "17"]


class Inputs:
    """Input files of one size, and the builds from them."""

    def __init__(self, bench: Bench, size: str, tracks: int, lists: int, menus: int, songs: int):
        self.bench = bench
        self.size = size
        folder = bench.folder / size
        folder.mkdir()
        self.folder = folder
        self.tracks = self.file("tracks.txt", inputs.tracks(tracks))
        self.playlists = self.file("playlists.txt", inputs.playlists(lists, tracks))
        self.elements = inputs.elements(menus, songs)
        self.xml = self.file("menu.xml", inputs.document(self.elements))
        self.empty = self.file("empty.txt", b"")
        self.made: dict[tuple[str, ...], bytes] = {}  # by command line
        self.files_of_first: dict[tuple[str, int, str], bytes] = {}  # by layout, elements, name

    def file(self, name: str, content: bytes) -> str:
        path = self.folder / name
        path.write_bytes(content)
        return str(path)

    def made_from(self, words: list[str]) -> bytes:
        """What a build without a fault leaves."""
        key = tuple(words)
        if key not in self.made:
            self.made[key] = self.make(words)
        return self.made[key]

    def make(self, words: list[str]) -> bytes:
        build = Build("reference", words)
        outcome = self.bench.run(build)
        if outcome.status != 0 or outcome.output is None:
            self.bench.fail(f"reference {' '.join(words)}", build, outcome, "a sound build fails")
        return outcome.output or b""

    def inventory(self, layout: str, tracks: str = "", playlists: str = "",
                  partial: bool = True) -> Build:
        """In INVENTORY mode. The file that is right is that of this object's own inputs."""
        def words(of_tracks: str, of_playlists: str) -> list[str]:
            return [*COMMON, "-T", layout, "-M", "INVENTORY", "-t", of_tracks, "-p", of_playlists]

        def means(of_tracks: str, of_playlists: str):
            expected = self.made_from(words(of_tracks, of_playlists))
            return lambda output: output == expected

        tracks, playlists = tracks or self.tracks, playlists or self.playlists
        build = Build(f"{self.size} lists -T {layout}", words(tracks, playlists))
        build.right = self.made_from(words(self.tracks, self.playlists))
        if partial:
            no_tracks = re.escape(f"Unable to open file {tracks}".encode())
            no_playlists = re.escape(f"Unable to open file {playlists}".encode())
            build.partial = {
                no_tracks: means(self.empty, self.playlists),
                no_playlists: means(self.tracks, self.empty),
                no_tracks + no_playlists: means(self.empty, self.empty)}
        return build

    def menu(self, layout: str, xml: str = "", partial: bool = True) -> Build:
        """In XML mode."""
        words = [*COMMON, "-T", layout, "-x", xml or self.xml]
        build = Build(f"{self.size} XML -T {layout}", words)
        build.right = self.made_from([*COMMON, "-T", layout, "-x", self.xml])
        if partial:
            build.partial = {b"Exception caught: .+\n":
                             lambda output: self.is_made_from_first(output, layout)}
        return build

    def unread_menu(self, layout: str, xml: str = "") -> Build:
        """In XML mode, where the document may be given up, but nothing after that: of one that is
        given up, nothing is taken."""
        build = self.menu(layout, xml, partial=False)
        nothing = self.file_of_first(layout, 0, "")
        build.partial = {b"Exception caught: .+\n": lambda output: output == nothing}
        return build

    def both(self, layout: str) -> list[Build]:
        return [self.inventory(layout), self.menu(layout)]

    def is_made_from_first(self, output: bytes, layout: str) -> bool:
        """Whether this is the inventory of the XML file's first few elements, or of none. Nothing
        but elements makes nodes here, so their number is in the file's header."""
        if len(output) < 28:
            return False
        first = struct.unpack_from("<I", output, 24)[0] - 1  # the root is no element
        if not 0 <= first <= len(self.elements):
            return False
        if output == self.file_of_first(layout, first, "Home"):
            return True
        return first == 0 and output == self.file_of_first(layout, first, "")

    def file_of_first(self, layout: str, first: int, name: str) -> bytes:
        key = layout, first, name
        if key not in self.files_of_first:
            path = self.file(f"first-{layout}-{first}-{name}.xml",
                             inputs.document(self.elements[:first], name))
            self.files_of_first[key] = self.made_from([*COMMON, "-T", layout, "-x", path])
            Path(path).unlink()
        return self.files_of_first[key]
