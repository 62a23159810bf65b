"""Runs the programs under test on files that mean no good."""

import os
import resource
import signal
import subprocess
import tempfile
import unittest
from dataclasses import dataclass
from pathlib import Path

BIN = Path()  # where the programs are
MEMORY = 2 << 30  # bytes of address space that any run may take
SECONDS = 60  # generous: nothing here takes as long, unless it takes for ever


@dataclass
class Done:
    status: int
    stdout: bytes
    stderr: bytes


def limit() -> None:
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def start(words: list, folder: Path) -> Done:
    """Raises TimeoutExpired, after ending the program, when it takes too long."""
    with subprocess.Popen(words, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, preexec_fn=limit, start_new_session=True,
                          env={"PATH": os.defpath, "LC_ALL": "C"}) as process:
        try:
            stdout, stderr = process.communicate(timeout=SECONDS)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            raise
    return Done(process.returncode, stdout, stderr)


class HostileTest(unittest.TestCase):
    """Each test has a folder of its own, which is the programs' working directory."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="hostile-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def run_program(self, name: str, *words, wrap: tuple = ()) -> Done:
        return start([*wrap, BIN / name, *words], self.folder)

    def write(self, name: str, pieces):
        """A new file each time: one that is cut off and written again may wait for the disk."""
        for old in (name, "one", "two"):
            (self.folder / old).unlink(missing_ok=True)
        with open(self.folder / name, "wb") as file:
            for piece in pieces:
                file.write(piece)

    def inventories(self) -> tuple[bytes, bytes]:
        return tuple((self.folder / name).read_bytes() for name in ("one", "two"))

    def read_lists(self, tracks, playlists=(), stderr: bytes = b"") -> tuple[bytes, bytes]:
        """Both layouts of the inventory of two list files, given in pieces."""
        self.write("tracks.txt", tracks)
        self.write("playlists.txt", playlists)
        for layout, output in (("1", "one"), ("2", "two")):
            done = self.run_program("skeinmake", "-M", "INVENTORY", "-t", "tracks.txt", "-p",
                                    "playlists.txt", "-T", layout, "-o", output)
            self.assertEqual((done.status, done.stdout), (0, b""))
            self.assertTrue(done.stderr == stderr, done.stderr[:1000])
        return self.inventories()

    def read_xml(self, pieces) -> tuple[bytes, tuple[bytes, bytes]]:
        """What is said of a document, given in pieces, and both layouts of its inventory."""
        self.write("menu.xml", pieces)
        said = set()
        for layout, output in (("1", "one"), ("2", "two")):
            done = self.run_program("skeinmake", "-x", "menu.xml", "-T", layout, "-o", output)
            self.assertEqual((done.status, done.stderr[:1000]), (0, b""))
            said.add(done.stdout)
        self.assertEqual(len(said), 1)
        return said.pop(), self.inventories()
