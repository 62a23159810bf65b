"""Inputs that are no ordinary file, or no file at all."""

import os
import signal
import socket
import threading
from collections.abc import Callable, Iterator
from dataclasses import replace
from pathlib import Path

from bench import Bench, Build
from builds import LAYOUTS, Inputs
from unprivileged import without_privilege

GIB = 1 << 30


def jobs(bench: Bench) -> Iterator[Callable[[], None]]:
    small = Inputs(bench, "small", 12, 2, 3, 4)
    large = Inputs(bench, "large", 2000, 3000, 40, 100)
    yield lambda: holes(bench, large)
    for layout in LAYOUTS:
        yield lambda layout=layout: no_file(bench, small, layout)
        for inputs in (small, large):
            yield lambda i=inputs, layout=layout: fifos(bench, i, layout)


def with_input(inputs: Inputs, layout: str, role: str, path: str) -> Build:
    if role == "xml":
        return inputs.unread_menu(layout, path)
    return inputs.inventory(layout, **{role: path})


def no_file(bench: Bench, inputs: Inputs, layout: str) -> None:
    """A list file that is none is told and left out, and so is the whole of an XML file."""
    folder = bench.folder / f"odd-{layout}"
    folder.mkdir()
    (folder / "loop").symlink_to("loop")
    Path(folder, "file").write_bytes(b"")
    address = socket.socket(socket.AF_UNIX)
    address.bind(str(folder / "socket"))
    protected = folder / "protected"
    protected.write_bytes(Path(inputs.tracks).read_bytes())
    protected.chmod(0)
    paths = {str(folder): "a folder", f"{folder}/none": "missing",
             f"{folder}/file/none": "in a file", f"{folder}/loop": "a loop of links",
             f"{folder}/{'n' * 256}": "too long a name", f"{folder}/socket": "a socket",
             str(protected): "protected"}
    for path, title in paths.items():
        wrap = without_privilege()
        if path == str(protected) and wrap is None:
            bench.note("inputs without permission: root's privileges cannot be given up")
            continue
        for role in ("tracks", "playlists", "xml"):
            build = with_input(inputs, layout, role, path)
            outcome = bench.run(build, wrap=wrap or ())
            name = f"{build.name}: the {role} file is {title}"
            bench.judge(name, build, outcome, ends=())
            bench.check(b"Unable to open" in outcome.stdout or b"Exception" in outcome.stdout,
                        name, "no message")
            bench.count("inputs that are no file")
    address.close()
    # Files that are no text, or have none.
    for role in ("tracks", "playlists"):
        for path in (inputs.empty, "/dev/null"):
            build = with_input(inputs, layout, role, path)
            build.right = inputs.made_from(with_input(inputs, layout, role, inputs.empty).words)
            bench.judge(f"{build.name}: {role} in {path}", build, bench.run(build), ends=())
    for path in (inputs.empty, "/dev/null"):
        build = with_input(inputs, layout, "xml", path)
        build.right = b""  # without a word there is no right file
        bench.judge(f"{build.name}: {path}", build, bench.run(build), ends=())
        bench.count("inputs that are no file")
    # A device that says nothing but errors, and one without an end.
    for role in ("tracks", "playlists"):
        build = replace(with_input(inputs, layout, role, "/proc/self/mem"), partial={})
        outcome = bench.run(build)
        bench.judge(f"{build.name}: {role} that cannot be read", build, outcome)
        bench.check(b": cannot read on: " in outcome.stderr, f"{build.name}: {role}", "no reason")
        bench.count("inputs that cannot be read")
        if not bench.sanitized:
            build = replace(with_input(inputs, layout, role, "/dev/zero"), partial={})
            outcome = bench.run(build, wrap=("prlimit", f"--as={1 << 29}", "--"))
            bench.judge(f"{build.name}: {role} without an end", build, outcome)
            bench.check(outcome.status == -signal.SIGABRT, build.name, outcome.end())
            bench.count("inputs without an end")


def fifos(bench: Bench, inputs: Inputs, layout: str) -> None:
    """A pipe with a name is read like a file."""
    for role in ("tracks", "playlists", "xml"):
        content = Path(getattr(inputs, role)).read_bytes()
        for piece in (len(content), 4093, 37):
            if len(content) // piece > 1000:
                continue
            path = str(inputs.folder / f"fifo-{layout}-{role}-{piece}")
            os.mkfifo(path)
            writer = threading.Thread(target=write_in_pieces, args=(path, content, piece))
            writer.start()
            build = replace(with_input(inputs, layout, role, path), partial={})
            bench.judge(f"{build.name}: {role} from a pipe", build, bench.run(build), ends=())
            # Lets the writer go on if the program did not read.
            os.close(os.open(path, os.O_RDONLY | os.O_NONBLOCK))
            writer.join()


def write_in_pieces(path: str, content: bytes, size: int) -> None:
    try:
        with open(path, "wb", buffering=0) as pipe:
            for start in range(0, len(content), size):
                pipe.write(content[start:start + size])
    except BrokenPipeError:
        pass


def holes(bench: Bench, inputs: Inputs) -> None:
    """Nothing but zero bytes, which take no room on the disk, before an input."""
    for role, size, memory in (("tracks", GIB // 4, 0), ("tracks", GIB, GIB // 2), ("xml", GIB, 0)):
        path = inputs.folder / f"hole-{role}-{size}"
        with open(path, "wb") as file:
            file.seek(size)
            file.write(b"\n" + Path(getattr(inputs, role)).read_bytes())
        build = with_input(inputs, "2", role, str(path))
        title = f"{build.name}: {role} after a hole of {size} bytes"
        if role == "xml":
            build.right = b""  # such a document is none
        if not memory:
            bench.judge(title, build, bench.run(build), ends=())
            bench.count("inputs with holes")
        elif not bench.sanitized:
            outcome = bench.run(build, wrap=("prlimit", f"--as={memory}", "--core=0", "--"))
            bench.judge(title, build, outcome)
            bench.check(outcome.status == -signal.SIGABRT, title, outcome.end())
            bench.count("inputs larger than memory")
        path.unlink()
