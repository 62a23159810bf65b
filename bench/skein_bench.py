#!/usr/bin/env python3
"""Times the companion program on the inventory of a million tracks, beside a plain read of the file.

Prints for each command the median time, its multiple of `cat FILE >/dev/null` in the same run, and
the peak memory beyond the file, which is mapped. Ends with 1 if a figure is over its limit."""

import argparse
import os
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Measured:
    seconds: float
    peak: int  # bytes of memory at the most, mapped file included


@dataclass
class Figure:
    name: str
    command: list[str]
    limit: float | None  # times the plain read


def once(command: list[str]) -> Measured:
    with open(os.devnull, "wb") as nowhere:
        start = time.perf_counter()
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=nowhere)
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(command)} ended with {process.returncode}")
    return Measured(seconds, usage.ru_maxrss * 1024)


def median_of(runs: list[Measured]) -> Measured:
    return Measured(statistics.median(run.seconds for run in runs), max(run.peak for run in runs))


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=Path, required=True, help="folder of the built programs")
    parser.add_argument("--tracks", type=int, default=1000000, help="default: %(default)s")
    parser.add_argument("--runs", type=int, default=7, help="of each command; default: %(default)s")
    arguments = parser.parse_args()
    skein = str(arguments.bin / "skein")

    with tempfile.TemporaryDirectory(prefix="skein-bench-") as folder:
        file = f"{folder}/tracks.inv"
        subprocess.run([arguments.bin / "bench" / "bench_generate", "library",
                        str(arguments.tracks), folder], check=True)
        subprocess.run([arguments.bin / "skeinmake", "-M", "INVENTORY", "-t",
                        f"{folder}/tracks.txt", "-p", f"{folder}/playlists.txt", "-o", file],
                       check=True)
        size = os.path.getsize(file)
        figures = [
            Figure("cat", ["cat", file], None),
            Figure("check", [skein, "check", file], 12),
            Figure("stats", [skein, "stats", file], 12),
            Figure("dump --format=jsonl", [skein, "dump", "--format=jsonl", file], 60),
            Figure("diff with itself", [skein, "diff", file, file], None),
        ]
        # Taken in turn, so that what else goes on at the time falls on all of them alike.
        runs: list[list[Measured]] = [[] for _ in figures]
        for _ in range(arguments.runs):
            for figure, measured in zip(figures, runs):
                measured.append(once(figure.command))

    medians = [median_of(measured) for measured in runs]
    read = medians[0].seconds
    print(f"{arguments.tracks} tracks, {size / 1e6:.0f} MB, median of {arguments.runs} runs")
    print(f"{'command':<22}{'ms':>8}{'x cat':>8}{'limit':>7}{'MB beyond the file':>21}")
    over = 0
    for figure, median in zip(figures, medians):
        times = median.seconds / read
        beyond = max(0, median.peak - size)
        limit = f"{figure.limit:g}" if figure.limit else "-"
        print(f"{figure.name:<22}{median.seconds * 1000:>8.1f}{times:>8.1f}{limit:>7}"
              f"{beyond / 1e6:>21.1f}")
        if figure.limit and (times > figure.limit or beyond > size):
            over += 1
    return 1 if over else 0


if __name__ == "__main__":
    sys.exit(main())
