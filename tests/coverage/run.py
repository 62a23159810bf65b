#!/usr/bin/env python3
"""Proves that the tests run every line and branch of src/ but those in expected.txt.

Builds the preset `coverage`, runs all of its tests and reads the compiler's counters. Fails when a
line or branch never ran that expected.txt doesn't list, and when expected.txt lists one that ran.

Not counted are branches taken only by an exception out of a call, and lines without a word in them,
such as a lone brace. Instances of a template count together.

A block of expected.txt gives a reason, then what it excuses; a number stands for so many branches
of the line (of all lines with that text, when a file has several):

    # The reason, in a line or more.
    src/io/disk_buffer.cc
      1 branch:    if (::fstat(fd_, &status) != 0) {
      never runs:  return false;
"""

import argparse
import json
import os
import re
import subprocess
import sys
import time
from collections import Counter, defaultdict
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
BUILD = ROOT / "build" / "coverage"
EXPECTED = HERE / "expected.txt"
NEVER_RUNS = "never runs"


class Failure(Exception):
    """Something that keeps the coverage from being known."""


@dataclass
class LineCounts:
    runs: int = 0
    # Branch counts of the instances that have as many branches, added up, by that number.
    branches: dict[int, list[int]] = field(default_factory=dict)

    def add(self, runs: int, branches: list[int]) -> None:
        self.runs += runs
        known = self.branches.setdefault(len(branches), [0] * len(branches))
        for i, taken in enumerate(branches):
            known[i] += taken

    def branch_count(self) -> int:
        return max(self.branches, default=0) if self.runs else 0

    def untaken(self) -> int:
        if not self.runs:
            return 0
        return min((counts.count(0) for counts in self.branches.values()), default=0)


@dataclass(frozen=True)
class Spot:
    """A line by its text: numbers change with every edit."""
    file: str
    text: str


Counts = dict[str, dict[int, LineCounts]]  # by file, by line number


def run(command: list[str], **options) -> subprocess.CompletedProcess:
    result = subprocess.run(command, cwd=ROOT, text=True, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    if result.returncode != 0:
        raise Failure(f"{' '.join(map(str, command))}: failed\n{result.stdout[-6000:]}")
    return result


def build(jobs: int) -> None:
    run(["cmake", "--preset", "coverage", "-DSKEINMAKE_WERROR=ON"])
    run(["cmake", "--build", "--preset", "coverage", "--parallel", str(jobs)])


def test_commands() -> list[tuple[list[str], str]]:
    """The commands of ctest's tests and their directories. All tests of one GoogleTest program go
    into one run, and so do all golden cases: hundreds of processes would spend their time on
    writing counters."""
    shown = subprocess.run(["ctest", "--preset", "coverage", "--show-only=json-v1"], cwd=ROOT,
                           stdin=subprocess.DEVNULL, capture_output=True, text=True, check=True)
    commands: dict[tuple[str, ...], tuple[list[str], str]] = {}
    for test in json.loads(shown.stdout)["tests"]:
        command = test["command"]
        directory = next((p["value"] for p in test["properties"]
                          if p["name"] == "WORKING_DIRECTORY"), str(BUILD))
        cases: list[str] = []
        if any(word.startswith("--gtest_filter=") for word in command):
            command = command[:1]
        elif len(command) > 1 and command[1].endswith("golden/run.py"):
            cases = [word for word in command if word.endswith(".txt")]
            command = [word for word in command if word not in cases]
        known = commands.setdefault(tuple(command), (list(command), directory))
        known[0].extend(cases)
    if not commands:
        raise Failure("there are no tests")
    return list(commands.values())


def run_tests(jobs: int) -> None:
    for counters in BUILD.rglob("*.gcda"):
        counters.unlink()
    with ThreadPoolExecutor(jobs) as pool:
        # Thousands of runs write their counters one after the other: on a slow machine for long.
        runs = [pool.submit(subprocess.run, command, cwd=directory, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=3600)
                for command, directory in test_commands()]
        try:
            results = [future.result() for future in runs]
        except subprocess.TimeoutExpired as failure:
            test = " ".join(failure.cmd[:3])
            raise Failure(f"{test}: not done in {failure.timeout:.0f} s") from failure
    for result in results:
        if result.returncode != 0:
            output = result.stdout.decode(errors="replace")
            raise Failure(f"{' '.join(result.args[:3])}: failed\n{output[-6000:]}")


def read_counters(jobs: int) -> Counts:
    counters = sorted(map(str, BUILD.rglob("*.gcda")))
    parts = [counters[i::4 * jobs] for i in range(4 * jobs)]
    with ThreadPoolExecutor(jobs) as pool:
        texts = list(pool.map(gcov, [part for part in parts if part]))
    counts: Counts = defaultdict(lambda: defaultdict(LineCounts))
    for document in (json.loads(line) for text in texts for line in text.splitlines()):
        for file in document["files"]:
            if file["file"].startswith("src/"):
                add_lines(counts[file["file"]], file["lines"])
    if not counts:
        raise Failure("the tests left no counters of src/")
    return counts


def gcov(counters: list[str]) -> bytes:
    return subprocess.run(
        ["gcov", "--branch-probabilities", "--branch-counts", "--json-format", "--stdout",
         *counters], cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True).stdout


def add_lines(counts: dict[int, LineCounts], lines: list[dict]) -> None:
    for line in lines:
        branches = [b["count"] for b in line["branches"] if not b["throw"]]
        counts[line["line_number"]].add(line["count"], branches)


def drop_wordless_lines(counts: Counts) -> dict[Spot, list[LineCounts]]:
    spots: dict[Spot, list[LineCounts]] = defaultdict(list)
    for file, lines in sorted(counts.items()):
        source = (ROOT / file).read_text().splitlines()
        for number, line in sorted(lines.items()):
            text = source[number - 1].strip()
            if re.search(r"\w", text):
                spots[Spot(file, text)].append(line)
    return spots


def find_gaps(spots: dict[Spot, list[LineCounts]]) -> Counter:
    """How many lines and branches never ran, by spot and kind."""
    gaps: Counter = Counter()
    for spot, lines in spots.items():
        gaps[spot, NEVER_RUNS] += sum(not line.runs for line in lines)
        gaps[spot, "branches"] += sum(line.untaken() for line in lines)
    return +gaps


def read_expected(path: Path) -> Counter:
    expected: Counter = Counter()
    file = ""
    reasoned = False  # a reason came, and what it excuses may follow
    for number, line in enumerate(path.read_text().splitlines(), 1):
        entry = re.fullmatch(r"  (never runs|(\d+) branch(?:es)?): +(\S.*)", line)
        if line.startswith("# "):
            reasoned, file = True, ""
        elif not line:
            reasoned, file = False, ""
        elif reasoned and re.fullmatch(r"src/\S+", line):
            file = line
        elif entry and file:
            kind = NEVER_RUNS if entry[1] == NEVER_RUNS else "branches"
            expected[Spot(file, entry[3]), kind] += int(entry[2] or 1)
        else:
            raise Failure(f"{path}:{number}: expected a reason, a file or what it excuses")
    return expected


def show(gaps: Counter) -> None:
    """In the form of expected.txt."""
    file = ""
    for (spot, kind), count in gaps.items():
        if spot.file != file:
            file = spot.file
            print(file)
        if kind == NEVER_RUNS:
            for _ in range(count):
                print(f"  never runs:  {spot.text}")
        else:
            label = f"{count} branch{'es' if count > 1 else ''}:"
            print(f"  {label:<12} {spot.text}")


def print_totals(spots: dict[Spot, list[LineCounts]], gaps: Counter) -> None:
    lines = sum(len(found) for found in spots.values())
    branches = sum(line.branch_count() for found in spots.values() for line in found)
    unrun = sum(count for (_, kind), count in gaps.items() if kind == NEVER_RUNS)
    untaken = sum(count for (_, kind), count in gaps.items() if kind != NEVER_RUNS)
    print(f"lines: {lines - unrun} of {lines} ({100 * (lines - unrun) / lines:.2f} %), "
          f"branches: {branches - untaken} of {branches} "
          f"({100 * (branches - untaken) / branches:.2f} %)")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("-j", "--jobs", type=int, default=len(os.sched_getaffinity(0)),
                        metavar="N", help="processes at a time (default: one a processor)")
    parser.add_argument("--no-run", action="store_true",
                        help="judge the counters that the last run left")
    arguments = parser.parse_args()
    try:
        expected = read_expected(EXPECTED)
        if not arguments.no_run:
            for name, work in (("build", build), ("tests", run_tests)):
                start = time.monotonic()
                work(arguments.jobs)
                print(f"{name}: {time.monotonic() - start:.0f} s", flush=True)
        spots = drop_wordless_lines(read_counters(arguments.jobs))
    except Failure as failure:
        print(failure)
        return 1
    gaps = find_gaps(spots)
    print_totals(spots, gaps)
    unknown, stale = gaps - expected, expected - gaps
    if unknown:
        print("\nNever run, and not in tests/coverage/expected.txt:")
        show(unknown)
    if stale:
        print("\nIn tests/coverage/expected.txt, but run or gone:")
        show(stale)
    return 1 if unknown or stale else 0


if __name__ == "__main__":
    sys.exit(main())
