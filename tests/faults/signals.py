"""Signals that end a build in its middle."""

import os
import signal
import subprocess
import tempfile
import time
from collections.abc import Callable, Iterator
from pathlib import Path

from bench import Bench, Build, Fault, end_of
from builds import LAYOUTS, Inputs

SIGNALS = (signal.SIGINT, signal.SIGTERM)
MOMENTS = 10
AT_ONCE = 1.0  # seconds, on a machine that is busy


def jobs(bench: Bench) -> Iterator[Callable[[], None]]:
    small = Inputs(bench, "small", 12, 2, 3, 4)
    large = Inputs(bench, "large", 25000, 300, 500, 100)
    for number, layout in zip(SIGNALS, LAYOUTS):
        for build in small.both(layout):
            yield lambda build=build, number=number: everywhere(bench, build, number)
    for number in SIGNALS:
        for layout in LAYOUTS:
            for build in large.both(layout):
                yield lambda build=build, number=number: at_moments(bench, build, number)
        yield lambda number=number: while_waiting(bench, large, number)


def everywhere(bench: Bench, build: Build, number: int) -> None:
    """At each of a build's allocations and each of its writes."""
    for call, path in (("new", ""), ("write", "OUT"), ("open", "OUT"), ("close", "OUT")):
        bench.series(build, Fault(call, "signal", number, path=path), ends=(-number,))


def at_moments(bench: Bench, build: Build, number: int) -> None:
    """From outside, at moments all over a large build."""
    whole = min(bench.run(build).seconds for _ in range(3))
    waits = []
    for moment in range(MOMENTS):
        with tempfile.TemporaryDirectory(dir=bench.folder) as folder:
            path = f"{folder}/out.inv"
            process = start(bench, build, path)
            time.sleep(whole * (moment + 0.5) / MOMENTS)
            title = f"{build.name}: {signal.Signals(number).name} at moment {moment} of {MOMENTS}"
            status, seconds = end_by(bench, process, number)
            if status == -number:
                waits.append(seconds)
                left = Path(path).read_bytes() if os.path.exists(path) else b""
                bench.check(build.right.startswith(left), title, "not the inventory's bytes")
            else:  # it was over
                bench.check(status == 0 and Path(path).read_bytes() == build.right, title,
                            f"status {status}")
    title = f"{build.name}: {signal.Signals(number).name}"
    bench.check(len(waits) >= MOMENTS // 5, title, f"only {len(waits)} came in time")
    # The middle one: the machine may be busy now and then.
    bench.check(sorted(waits + [0])[len(waits) // 2] < AT_ONCE, title, f"ended after {waits} s")


def start(bench: Bench, build: Build, output: str) -> subprocess.Popen:
    return subprocess.Popen(bench.command(build, output), env=bench.environment(),
                            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL, start_new_session=True)


def end_by(bench: Bench, process: subprocess.Popen, number: int) -> tuple[int | None, float]:
    """Sends the signal. Returns the status and the seconds that it took to end."""
    start_of_wait = time.monotonic()
    process.send_signal(number)
    status = end_of(process, 60)[0]
    if status == -number:
        bench.count(f"{signal.Signals(number).name} from outside")
    return status, time.monotonic() - start_of_wait


def while_waiting(bench: Bench, inputs: Inputs, number: int) -> None:
    """While the build waits for an input, or for the reader of its output."""
    name = signal.Signals(number).name
    for role in ("tracks", "playlists", "xml"):
        path = str(inputs.folder / f"half-{role}-{name}")
        os.mkfifo(path)
        content = Path(getattr(inputs, role)).read_bytes()
        build = inputs.menu("2", path, partial=False) if role == "xml" else (
            inputs.inventory("2", **{role: path}, partial=False))
        with tempfile.TemporaryDirectory(dir=bench.folder) as folder:
            output = Path(folder, "out.inv")
            process = start(bench, build, str(output))
            with open(path, "wb", buffering=0) as pipe:
                pipe.write(content[:len(content) // 2])
                status, _ = end_by(bench, process, number)
            bench.check(status == -number, f"{build.name}: {name} within {role}", f"{status}")
            bench.check(not output.exists(), f"{build.name}: {name} within {role}", "an output")
    for layout in LAYOUTS:
        for build in (inputs.inventory(layout, partial=False), inputs.menu(layout, partial=False)):
            path = str(bench.folder / f"out-{build.name.replace(' ', '-')}-{name}")
            os.mkfifo(path)
            process = start(bench, build, path)
            with open(path, "rb", buffering=0) as pipe:
                first = pipe.read(4096)
                status, _ = end_by(bench, process, number)
            bench.check(status == -number, f"{build.name}: {name} within the output", f"{status}")
            bench.check(build.right.startswith(first), build.name, "not the inventory's bytes")
