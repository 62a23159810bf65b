"""Faults of the output file."""

import errno
import re
from collections.abc import Callable, Iterator
from itertools import product

from bench import Bench, Build, Fault
from builds import LAYOUTS, Inputs

ERRORS = (errno.ENOSPC, errno.EIO, errno.EDQUOT)
OPEN_ERRORS = (*ERRORS, errno.EINTR, errno.EACCES, errno.EROFS, errno.EMFILE)


def jobs(bench: Bench) -> Iterator[Callable[[], None]]:
    small = Inputs(bench, "small", 12, 2, 3, 4)
    large = Inputs(bench, "large", 14000, 20, 300, 100)
    for inputs, least in ((small, 1), (large, 2)):
        for layout in LAYOUTS:
            for build in inputs.both(layout):
                yield lambda build=build, least=least: output_calls(bench, build, least)
    for layout in LAYOUTS:
        for build in large.both(layout):
            yield lambda build=build: seen_by_strace(bench, build)


def output_calls(bench: Bench, build: Build, least: int) -> None:
    for number in OPEN_ERRORS:
        bench.series(build, Fault("open", "error", number, path="OUT"))
    for number in ERRORS:
        for onward in (False, True):
            bench.series(build, Fault("write", "error", number, onward, "OUT"), least)
    for number in (*ERRORS, errno.EINTR):
        bench.series(build, Fault("close", "error", number, path="OUT"))
    # What was interrupted or cut short goes on: the file is whole.
    bench.series(build, Fault("write", "error", errno.EINTR, path="OUT"), least, ends=())
    for effect in ("half", "one", "most"):
        bench.series(build, Fault("write", effect, path="OUT"), least, ends=())
        every = Fault("write", effect, onward=True, path="OUT")
        if effect != "one" or least == 1:
            outcome = bench.run(build, every, 1)
            bench.judge(f"{build.name}: {every.title()}", build, outcome, ends=())
            bench.count(every.title())
            bench.check(outcome.faults > least, f"{build.name}: {every.title()}",
                        f"{outcome.faults} faults")


def traced(bench: Bench, build: Build, *options: str):
    """A run under strace, which looks at nothing but the output file's calls."""
    log = bench.folder / f"trace-{build.name.replace(' ', '-')}"
    # A program that is traced can't look for leaks.
    environment = bench.environment()
    if bench.sanitized:
        options_so_far = environment.get("ASAN_OPTIONS", "")
        environment["ASAN_OPTIONS"] = f"{options_so_far}:detect_leaks=0"
    outcome = bench.run(build, wrap=("strace", "-f", "-qq", "-o", str(log), "-P", "OUT", *options),
                        environment=environment)
    text = log.read_text(errors="replace")
    log.unlink()
    return outcome, text


def seen_by_strace(bench: Bench, build: Build) -> None:
    """The injector stands in front of every one of the system's calls, and what the system itself
    makes fail has the same end."""
    kinds = {"open": ("open", "openat"), "write": ("write", "writev"), "close": ("close",)}
    outcome, log = traced(bench, build, "-e", "trace=open,openat,write,writev,close")
    bench.judge(f"{build.name}: traced", build, outcome, ends=())
    for kind, calls in kinds.items():
        seen = {call: len(re.findall(rf"^\d+ +{call}\(", log, re.MULTILINE)) for call in calls}
        counted = bench.run(build, Fault(kind, "error", path="OUT")).calls
        bench.check(sum(seen.values()) == counted > 0, f"{build.name}: {kind}",
                    f"the system sees {seen} of the output file, the injector {counted}")
        for call, number in seen.items():
            for nth, error in product(range(1, number + 1), ("ENOSPC", "EIO")):
                fail_by_system(bench, build, call, nth, error)


def fail_by_system(bench: Bench, build: Build, call: str, nth: int, error: str) -> None:
    outcome, log = traced(bench, build, "-e", f"trace={call}",
                          "-e", f"inject={call}:error={error}:when={nth}")
    title = f"{build.name}: the system's {call} {error}, call {nth}"
    bench.check("(INJECTED)" in log, title, "no fault")
    bench.judge(title, build, outcome)
    bench.count(f"{call} {error} by the system")
