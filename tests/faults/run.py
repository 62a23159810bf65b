#!/usr/bin/env python3
"""Builds inventories while files and memory fail, one call after the other, and checks that each
build leaves the right file or says why not. Prints how many faults there were of each kind."""

import argparse
import resource
import signal
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
import memory  # noqa: E402
import odd_inputs  # noqa: E402
import outputs  # noqa: E402
import reads  # noqa: E402
import signals  # noqa: E402
import writes  # noqa: E402
from bench import Bench  # noqa: E402

AREAS = {area.__name__: area for area in (writes, reads, memory, outputs, odd_inputs, signals)}
MOST_SHOWN = 20  # failures of an area


def run_area(name: str, arguments: argparse.Namespace) -> tuple[int, int]:
    """Returns how many faults there were, and how many builds did not stand them."""
    with tempfile.TemporaryDirectory(prefix=f"faults-{name}-") as folder:
        bench = Bench(arguments.skeinmake.resolve(), arguments.injector.resolve(), Path(folder),
                      arguments.sanitized)
        with ThreadPoolExecutor(arguments.jobs) as pool:
            for done in [pool.submit(job) for job in AREAS[name].jobs(bench)]:
                done.result()
    for failure in bench.failures[:MOST_SHOWN]:
        print(failure)
    if len(bench.failures) > MOST_SHOWN:
        print(f"... and {len(bench.failures) - MOST_SHOWN} more failures")
    for note in sorted(set(bench.notes)):
        print(f"{name}: not tried here: {note}")
    for title, number in sorted(bench.tally.items()):
        print(f"{name}: {number:6}  {title}")
    faults = sum(bench.tally.values())
    print(f"{name}: {faults} faults in {bench.runs} builds, {len(bench.failures)} failures")
    return faults, len(bench.failures)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("areas", nargs="*", metavar="AREA",
                        help=f"of {', '.join(AREAS)} (default: all)")
    parser.add_argument("--skeinmake", type=Path, required=True, help="the program")
    parser.add_argument("--injector", type=Path, required=True, help="the library to preload")
    parser.add_argument("--sanitized", action="store_true", help="they are built with sanitizers")
    parser.add_argument("-j", "--jobs", type=int, default=1, metavar="N",
                        help="builds run at a time (default: %(default)s)")
    arguments = parser.parse_args()
    unknown = set(arguments.areas) - set(AREAS)
    if unknown:
        parser.error(f"no such area: {', '.join(sorted(unknown))}")
    # A shell has what it starts in the background ignore this, and the program would, too.
    signal.signal(signal.SIGINT, signal.default_int_handler)

    # A program that ends by a signal must not leave a core file.
    resource.setrlimit(resource.RLIMIT_CORE, (0, resource.getrlimit(resource.RLIMIT_CORE)[1]))
    start = time.monotonic()
    results = [run_area(name, arguments) for name in arguments.areas or AREAS]
    faults, failures = (sum(column) for column in zip(*results))
    print(f"faults: {faults} in all, {failures} failures, {time.monotonic() - start:.1f} s")
    return 1 if failures or not faults else 0


if __name__ == "__main__":
    sys.exit(main())
