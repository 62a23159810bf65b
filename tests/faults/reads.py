"""Faults of the input files."""

import errno
from collections.abc import Callable, Iterator
from dataclasses import replace
from itertools import count
from pathlib import Path

from bench import Bench, Build, Fault
from builds import LAYOUTS, Inputs

OPEN_ERRORS = (errno.EACCES, errno.EMFILE, errno.EIO, errno.EINTR, errno.ELOOP)
READ_ERRORS = (errno.EIO, errno.ESTALE)


def jobs(bench: Bench) -> Iterator[Callable[[], None]]:
    small = Inputs(bench, "small", 12, 2, 3, 4)
    large = Inputs(bench, "large", 4500, 6000, 20, 100)
    for inputs, least in ((small, 2), (large, 3)):
        for layout in LAYOUTS:
            for path in (inputs.tracks, inputs.playlists):
                yield lambda i=inputs, layout=layout, path=path, least=least: list_calls(
                    bench, i, layout, path, least)
            yield lambda i=inputs, layout=layout, least=least: xml_calls(bench, i, layout, least)
        yield lambda i=inputs: growing(bench, i)


def list_calls(bench: Bench, inputs: Inputs, layout: str, path: str, least: int) -> None:
    """`path` is the tracks or the playlists file."""
    build = inputs.inventory(layout)
    whole = replace(build, partial={})  # a build that must take in everything
    for number in OPEN_ERRORS:
        bench.series(build, Fault("open", "error", number, path=path), ends=())
        bench.series(build, Fault("fstat", "error", number, path=path), ends=())
        bench.series(whole, Fault("close", "error", number, path=path), ends=())
    for number in READ_ERRORS:
        for onward in (False, True):
            bench.series(whole, Fault("read", "error", number, onward, path), least)
    bench.series(whole, Fault("read", "error", errno.EINTR, path=path), least, ends=())
    shortened(bench, whole, path, least)


def xml_calls(bench: Bench, inputs: Inputs, layout: str, least: int) -> None:
    path = inputs.xml
    build = inputs.unread_menu(layout)
    for number in OPEN_ERRORS:
        bench.series(build, Fault("open", "error", number, path=path), ends=())
        bench.series(build, Fault("close", "error", number, path=path), ends=())
    for number in (*READ_ERRORS, errno.EINTR):
        for onward in (False, True):
            bench.series(build, Fault("read", "error", number, onward, path), least, ends=())
    shortened(bench, replace(build, partial={}), path, least)


def shortened(bench: Bench, build: Build, path: str, least: int) -> None:
    """Reads that give less than there is change nothing."""
    for effect in ("half", "one", "most"):
        bench.series(build, Fault("read", effect, path=path), least, ends=())
        every = Fault("read", effect, onward=True, path=path)
        outcome = bench.run(build, every, 1)
        bench.judge(f"{build.name}: {every.title()}", build, outcome, ends=())
        bench.check(outcome.faults > least, f"{build.name}: {every.title()}",
                    f"{outcome.faults} faults")
        bench.count(every.title())


def growing(bench: Bench, inputs: Inputs) -> None:
    """What is added to an input before its end was seen is part of it."""
    more = {
        inputs.tracks: b"\n900001|Late Song|9001|Late Artist|9002|Late Album|9003|Late Genre|3\n",
        inputs.playlists: b"\nLate List\n99\n1\n3\n-1\n",
        inputs.xml: b"<!-- late -->\n"}
    for path, added in more.items():
        content = Path(path).read_bytes()
        source = inputs.file("added", added)
        grown = inputs.file("grown", content + added)
        if path == inputs.xml:
            build = inputs.menu("2", grown, partial=False)
        else:
            tracks, playlists = (grown if path == of else "" for of in (inputs.tracks,
                                                                       inputs.playlists))
            build = inputs.inventory("2", tracks, playlists, partial=False)
            build.right = inputs.make(build.words)
        fault = Fault("read", "append", path=grown, source=source)
        for nth in count(1):
            Path(grown).write_bytes(content)
            outcome = bench.run(build, fault, nth)
            if outcome.faults == 0 or outcome.status is None:
                break
            bench.judge(f"{build.name}: {path} grows before read {nth}", build, outcome, ends=())
            bench.count(f"{fault.title()} to the file")
        bench.check(nth > 2, f"{build.name}: {path} grows", f"only {nth - 1} reads")
        for name in (source, grown):
            Path(name).unlink()
