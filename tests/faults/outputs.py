"""Outputs that are no ordinary file, and limits of the system on files."""

import errno
import os
import re
import signal
import socket
import subprocess
import threading
from collections.abc import Callable, Iterator
from dataclasses import replace
from pathlib import Path

from bench import TOLD, Bench, Build, Outcome
from builds import LAYOUTS, Inputs
from unprivileged import without_privilege

ABORTS = (-signal.SIGABRT,)
PIPE_HOLDS = 65536  # bytes


def jobs(bench: Bench) -> Iterator[Callable[[], None]]:
    small = Inputs(bench, "small", 12, 2, 3, 4)
    large = Inputs(bench, "large", 14000, 20, 300, 100)
    for inputs in (small, large):
        for layout in LAYOUTS:
            for build in inputs.both(layout):
                yield lambda build=build: no_file(bench, build)
                yield lambda build=build: size_limit(bench, build)
                yield lambda build=build: fifo(bench, build)
                yield lambda build=build: full_disk(bench, build)
    for layout in LAYOUTS:
        yield lambda layout=layout: over_an_input(bench, small, layout)


def fails(bench: Bench, title: str, build: Build, outcome: Outcome,
          ends: tuple[int, ...] = ABORTS) -> None:
    """This build can't leave its file."""
    bench.judge(title, build, outcome, ends)
    bench.check(outcome.status != 0, title, "status 0")
    bench.count("outputs that cannot be")


def no_file(bench: Bench, build: Build) -> None:
    folder = bench.folder / f"no-file-{build.name.replace(' ', '-')}"
    folder.mkdir()
    (folder / "loop").symlink_to("loop")
    (folder / "file").write_bytes(b"")
    address = socket.socket(socket.AF_UNIX)
    address.bind(str(folder / "socket"))
    paths = {"/dev/full": "a full disk", str(folder): "a folder", f"{folder}/no/out": "no folder",
             f"{folder}/file/out": "a file for a folder", f"{folder}/loop": "a loop of links",
             f"{folder}/{'n' * 256}": "too long a name", f"{folder}/socket": "a socket",
             "/proc/out.inv": "a file system without files"}
    for path, title in paths.items():
        outcome = bench.run(build, output=path)
        fails(bench, f"{build.name}: the output is {title}", build, outcome)
    address.close()

    protected = folder / "protected"
    protected.mkdir()
    kept = protected / "file"
    kept.write_bytes(b"kept")
    kept.chmod(0o444)
    protected.chmod(0o555)
    wrap = without_privilege()
    if wrap is None:
        bench.note("outputs without permission: root's privileges cannot be given up")
    else:
        for path, title in {str(kept): "a file", f"{protected}/new": "a folder"}.items():
            outcome = bench.run(build, output=path, wrap=wrap)
            fails(bench, f"{build.name}: the output is in {title} without permission", build,
                  replace(outcome, output=None))
        bench.check(kept.read_bytes() == b"kept" and len(os.listdir(protected)) == 1,
                    f"{build.name}: protected folder", "it was changed")
    protected.chmod(0o755)


def size_limit(bench: Bench, build: Build) -> None:
    """No file may be larger than so many bytes. The system's signal for it may end the build."""
    size = len(build.right)
    for limit in sorted({0, 1, 16, 4096, 65535, 65536, size // 2, size - 1}):
        if limit >= size:
            continue
        allowed = ("prlimit", f"--fsize={limit}", "--core=0", "--")
        title = f"{build.name}: at most {limit} bytes"
        fails(bench, title, build, bench.run(build, wrap=allowed), (-signal.SIGXFSZ,))
        ignoring = ("env", "--ignore-signal=XFSZ", *allowed)
        fails(bench, title, build, bench.run(build, wrap=ignoring))
    outcome = bench.run(build, wrap=("prlimit", f"--fsize={size}", "--core=0", "--"))
    bench.judge(f"{build.name}: as many bytes as allowed", build, outcome, ends=())


def fifo(bench: Bench, build: Build) -> None:
    """Into a pipe with a name goes the same file; when its reader leaves, the build ends."""
    for taken in sorted({0, 1, PIPE_HOLDS, len(build.right) - 1, len(build.right)}):
        for wrap in ((), ("env", "--ignore-signal=PIPE")):
            # A pipe of its own: what is left in one goes when nobody has it open any longer.
            path = str(bench.folder / f"fifo-{build.name.replace(' ', '-')}-{taken}-{len(wrap)}")
            os.mkfifo(path)
            got = bytearray()
            reader = threading.Thread(target=read_from, args=(path, taken, got))
            reader.start()
            outcome = bench.run(build, output=path, wrap=wrap)
            release(path, os.O_WRONLY)
            reader.join()
            outcome.output = bytes(got)
            title = f"{build.name}: {taken} bytes are taken from a pipe"
            if taken == len(build.right):
                bench.judge(title, build, outcome, ends=())
            elif outcome.status == 0:
                # What the pipe holds when its reader leaves is lost without a word.
                lost = len(build.right) - taken
                bench.check(lost <= PIPE_HOLDS and build.right.startswith(outcome.output), title,
                            "status 0")
            else:
                bench.judge(title, build, outcome, ABORTS if wrap else (-signal.SIGPIPE,))
                bench.count("readers that leave")


def release(path: str, flags: int) -> None:
    """Lets go whoever still waits for the pipe's other end."""
    try:
        os.close(os.open(path, flags | os.O_NONBLOCK))
    except OSError as error:
        if error.errno != errno.ENXIO:  # nobody waits
            raise


def read_from(path: str, length: int, got: bytearray) -> None:
    with open(path, "rb", buffering=0) as pipe:
        while len(got) < length:
            piece = pipe.read(length - len(got))
            if not piece:
                return
            got += piece


def full_disk(bench: Bench, build: Build) -> None:
    """A disk of its own for the build, that only this process and its children see."""
    folder = bench.folder / f"disk-{build.name.replace(' ', '-')}"
    folder.mkdir()
    for flags in (("--mount",), ("--mount", "--map-root-user")):
        words = ["unshare", *flags, "mount", "-t", "tmpfs", "tmpfs", str(folder)]
        if subprocess.run(words, capture_output=True, check=False).returncode == 0:
            break
    else:
        bench.note("a small disk that fills up: no file system can be mounted")
        return
    copy = folder.with_suffix(".copy")
    script = ('mount -t tmpfs -o "$1" tmpfs "$2" && { shift 2; "$@"; status=$?; '
              'cp "$DISK/out.inv" "$COPY"; exit $status; } 2>"$COPY.err"; exit 126')
    size = len(build.right)
    pages = -(-size // 4096)
    options = [f"size={4096 * n}" for n in {1, pages // 2, pages - 1} if 0 < n < pages]
    for option in (*options, "nr_inodes=1", f"size={4096 * (pages + 1)}"):
        copy.unlink(missing_ok=True)
        wrap = ("unshare", *flags, "sh", "-c", script, "sh", option, str(folder))
        environment = bench.environment() | {"DISK": str(folder), "COPY": str(copy)}
        outcome = bench.run(build, output=f"{folder}/out.inv", wrap=wrap, environment=environment)
        errors = Path(f"{copy}.err").read_bytes()
        outcome.stderr = errors.replace(os.fsencode(f"{folder}/out.inv"), b"OUT")
        outcome.output = copy.read_bytes() if copy.exists() else None
        title = f"{build.name}: a disk with {option}"
        if option == f"size={4096 * (pages + 1)}":
            bench.judge(title, build, outcome, ends=())
            continue
        # The shell's status for a signal; its own words and those of cp come after the program's.
        told = re.search(TOLD, outcome.stderr.split(b"Aborted")[0], re.MULTILINE)
        bench.check(outcome.status == 128 + signal.SIGABRT and bool(told), title,
                    f"{outcome.end()}, {errors!r}")
        bench.check(build.right.startswith(outcome.output or b""), title,
                    "not the inventory's bytes")
        bench.count("disks that fill up")


def over_an_input(bench: Bench, inputs: Inputs, layout: str) -> None:
    """An input is read before the output takes its place."""
    for name in ("tracks", "playlists", "xml"):
        path = inputs.file(f"over-{layout}-{name}", Path(getattr(inputs, name)).read_bytes())
        if name == "xml":
            build = inputs.menu(layout, path, partial=False)
        else:
            build = inputs.inventory(layout, **{name: path}, partial=False)
        outcome = bench.run(build, output=path)
        bench.judge(f"{build.name}: the output is its {name} file", build, outcome, ends=())
