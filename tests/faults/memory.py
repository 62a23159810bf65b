"""Memory that runs out, and threads that are not to be had."""

import errno
import os
import signal
import subprocess
from collections.abc import Callable, Iterator
from itertools import count

from bench import Bench, Build, Fault
from builds import LAYOUTS, Inputs


MIB = 1 << 20


def jobs(bench: Bench) -> Iterator[Callable[[], None]]:
    small = Inputs(bench, "small", 12, 2, 3, 4)
    huge = Inputs(bench, "huge", 6000, 60, 250, 100)
    vast = Inputs(bench, "vast", 190000, 60, 1, 1)  # takes memory in whole mappings, and moves some
    shared = Inputs(bench, "shared", 260000, 60, 1, 1)  # large enough for threads to share the work
    if bench.sanitized:
        bench.note("little address space: the sanitizers take more than any machine has")
    else:
        for layout in LAYOUTS:
            yield lambda layout=layout: little_memory(bench, huge.inventory(layout), False)
            yield lambda layout=layout: little_memory(bench, huge.menu(layout), True)
    for onward in (False, True):
        yield lambda onward=onward: bench.series(
            shared.inventory("2"), Fault("thread", "error", errno.EAGAIN, onward),
            least=5 if (os.cpu_count() or 1) > 1 else 1)
        for build in small.both("2"):
            yield lambda build=build, onward=onward: doomed(
                bench, build, onward, "/dev/full")
        unreadable = small.inventory("2", tracks="/proc/self/mem")
        yield lambda build=unreadable, onward=onward: doomed(bench, build, onward)
        for layout in LAYOUTS:
            for build in small.both(layout):
                yield lambda build=build, onward=onward: bench.series(
                    build, Fault("new", "error", errno.ENOMEM, onward), least=20)
            yield lambda build=vast.inventory(layout), onward=onward: bench.series(
                build, Fault("mmap", "error", errno.ENOMEM, onward), least=5)


def doomed(bench: Bench, build: Build, onward: bool, output: str | None = None) -> None:
    """A build that can't succeed: the message that says so finds its memory, or says that there is
    none."""
    fault = Fault("new", "error", errno.ENOMEM, onward)
    for nth in count(1):
        outcome = bench.run(build, fault, nth, output=output)
        title = f"{build.name}, which fails anyhow: {fault.title()}, call {nth}"
        bench.judge(title, build, outcome)
        bench.check(outcome.status == -signal.SIGABRT, title, outcome.end())
        if outcome.faults == 0 or outcome.status is None:
            break
        bench.count(f"{fault.title()}, with a file that fails")
    bench.check(nth > 5, f"{build.name}: {fault.title()}", f"only {nth - 1} calls")


def little_memory(bench: Bench, build: Build, uses_libraries: bool) -> None:
    """So little address space that the input doesn't fit, then a little more, until it does."""
    limit = enough_to_start(bench)
    short = 0
    while True:
        outcome = bench.run(build, wrap=("prlimit", f"--as={limit}", "--core=0", "--"))
        if outcome.output == build.right and outcome.status == 0:
            break
        title = f"{build.name}: {limit >> 10} KiB of memory"
        loading = outcome.status == 127 and b"error while loading shared" in outcome.stderr
        # Without memory, GLib ends the process itself: with a message, or when it finds no memory
        # for that either, by calling itself until the stack is full.
        by_library = uses_libraries and (
            outcome.status == -signal.SIGSEGV or b"GLib" in outcome.stderr)
        if not (loading or by_library):
            bench.judge(title, build, outcome)
        bench.check(outcome.status is not None and limit < 1024 * MIB, title, outcome.end())
        if outcome.status is None or limit >= 1024 * MIB:
            break
        short += 1
        bench.count("too little address space")
        limit += MIB
    bench.check(short > 3, f"{build.name}: little memory", f"only {short} limits were too low")


def enough_to_start(bench: Bench) -> int:
    """Bytes of address space, to the next MiB, that the program takes to say its version."""
    low, high = 0, 1024 * MIB
    while high - low > MIB:
        middle = (low + high) // 2
        words = ["prlimit", f"--as={middle}", "--core=0", "--", str(bench.skeinmake), "--version"]
        done = subprocess.run(words, capture_output=True, check=False, timeout=60,
                              env=bench.environment())
        low, high = (low, middle) if done.returncode == 0 else (middle, high)
    return high
