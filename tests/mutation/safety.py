"""Keeps mutants from doing harm, to the machine and to the results."""

import os
import resource
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from judge import Judge  # noqa: E402
from results import Results  # noqa: E402

CONFINED = "MUTATION_CONFINED"  # is set where mutants can do no harm


def confine(program: Path, kept: Path) -> None:
    """Starts `program` anew where it can change nothing but the folder `kept`, and has one for
    temporary files to itself: a mutant that runs as root may well replace a device or remove a
    file. Anybody else has no such rights, and is not kept from anything."""
    if os.geteuid() != 0 or os.environ.get(CONFINED):
        return
    kept.mkdir(parents=True, exist_ok=True)
    temporary = tempfile.gettempdir()
    script = ('set -e; mount --bind "$1" "$1"; mount -t tmpfs -o mode=1777 tmpfs "$2"; '
              'for place in / /dev; do mount -o remount,bind,ro "$place"; done; '
              'shift 2; cd /; exec "$@"')
    os.execvpe("unshare", ["unshare", "--mount", "sh", "-c", script, "sh", str(kept), temporary,
                           sys.executable, str(program), *sys.argv[1:]],
               os.environ | {CONFINED: "1"})


def limit_resources() -> None:
    """A mutant may ask for memory, or write, without end."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))


class SoundTests:
    """Keeps results back until the tests have passed once more with the unchanged programs: what
    a mutant did to the machine could make all tests fail, and so seem to catch all mutants."""

    MOST = 100  # are kept back

    def __init__(self, judge: Judge, directory: Path, results: Results):
        self.judge, self.directory, self.results = judge, directory, results
        self.pending: list[tuple[str, str]] = []

    def add(self, name: str, fate: str) -> None:
        self.pending.append((name, fate))
        if len(self.pending) >= self.MOST:
            self.confirm()

    def confirm(self) -> None:
        if self.pending and self.judge.catches(self.directory, []):
            raise SystemExit("the tests fail with the unchanged programs by now: nothing is kept "
                             f"of the last {len(self.pending)} mutants")
        for name, fate in self.pending:
            self.results.add(name, fate)
        self.pending.clear()
