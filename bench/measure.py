"""Runs commands side by side and says what they took."""

import filecmp
import os
import resource
import statistics
import time
from dataclasses import dataclass, field
from pathlib import Path


class BenchError(Exception):
    """What ends a measurement: a program that is missing, fails or does not do its work."""


@dataclass(frozen=True)
class Sample:
    """One run of a command, or of several one after the other."""

    seconds: float
    cpu: float  # seconds, in the program and in the kernel for it
    peak: int  # bytes resident at most

    def then(self, other):
        return Sample(
            self.seconds + other.seconds, self.cpu + other.cpu, max(self.peak, other.peak)
        )


@dataclass(frozen=True)
class Command:
    argv: tuple
    stdin: str = os.devnull
    stdout: str = os.devnull
    silent: bool = False  # having something to say is a failure


@dataclass
class Entry:
    """One row of a table: what is run, and the samples of its runs."""

    label: str
    commands: list
    output: Path = None  # made by each run, removed after it
    same_as: Path = None  # what the output must be, byte for byte
    limits: list = field(default_factory=list)
    missing: str = ""  # the package without which it can't run
    samples: list = field(default_factory=list)

    def seconds(self):
        return [sample.seconds for sample in self.samples]

    def peak(self):
        return max(sample.peak for sample in self.samples)


def own_peak():
    """Peak memory in bytes of this process. The kernel counts it for what it starts, too: no
    smaller figure can be measured."""
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024


def run_command(command, scratch):
    errors = scratch / "stderr.txt"
    said = scratch / "stdout.txt" if command.silent else command.stdout
    create = os.O_WRONLY | os.O_CREAT | os.O_TRUNC
    actions = [
        (os.POSIX_SPAWN_OPEN, 0, command.stdin, os.O_RDONLY, 0),
        (os.POSIX_SPAWN_OPEN, 1, str(said), create, 0o644),
        (os.POSIX_SPAWN_OPEN, 2, str(errors), create, 0o644),
    ]
    argv = [str(word) for word in command.argv]
    begin = time.perf_counter()
    child = os.posix_spawnp(argv[0], argv, os.environ, file_actions=actions)
    _, status, usage = os.wait4(child, 0)
    seconds = time.perf_counter() - begin
    if status != 0 or (command.silent and (errors.stat().st_size or Path(said).stat().st_size)):
        text = errors.read_text(errors="replace") + (
            Path(said).read_text(errors="replace") if command.silent else ""
        )
        raise BenchError(f"{' '.join(argv)}: wait status {status}\n{text[:2000]}")
    return Sample(seconds, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


def run_entry(entry, scratch):
    sample = None
    for command in entry.commands:
        latest = run_command(command, scratch)
        sample = latest if sample is None else sample.then(latest)
    if entry.output is not None:
        if entry.same_as is not None and not filecmp.cmp(entry.output, entry.same_as, False):
            raise BenchError(f"{entry.label}: another output than before")
        # Freed here: making room for it again is no part of the next run.
        entry.output.unlink()
    return sample


def run_rounds(entries, rounds, scratch):
    """Each round runs every entry once, beginning with another one each time, so that whatever else
    the machine does meets all of them alike."""
    present = [entry for entry in entries if not entry.missing]
    for number in range(rounds):
        turn = number % len(present)
        for entry in present[turn:] + present[:turn]:
            entry.samples.append(run_entry(entry, scratch))


def ratios(entry, base):
    """How many times as long as `base` the entry took, round by round."""
    return [a / b for a, b in zip(entry.seconds(), base.seconds())]


def cpu_ratios(entry, base):
    """The same in CPU time, which suffers less from a busy machine."""
    return [a.cpu / b.cpu for a, b in zip(entry.samples, base.samples)]


@dataclass(frozen=True)
class Limit:
    """A figure to be kept: time or peak memory, times that of another entry, or so many bytes."""

    what: str  # "time" or "memory"
    factor: float
    base: Entry = None

    def judge(self, entry):
        """The measured figure, the limit, whether it is kept: None when that is not known."""
        if self.base is not None and self.base.missing:
            return f"no {self.base.label} here", f"{self.factor:g}", None
        if self.what == "time":
            measured = statistics.median(ratios(entry, self.base))
            unit = f" x {self.base.label}"
        elif self.base is not None:
            measured = entry.peak() / self.base.peak()
            unit = f" x memory of {self.base.label}"
        else:
            measured = entry.peak() / 1e6
            unit = " MB"
        # Judged as printed.
        measured = round(measured, 2)
        return f"{measured:g}{unit}", f"{self.factor:g}", measured <= self.factor


def show_seconds(seconds):
    return f"{seconds * 1e3:.2f} ms" if seconds < 0.1 else f"{seconds:.3f} s"


def show_peak(peak):
    return f"{peak / 1e6:.0f} MB" if peak > own_peak() else f"< {own_peak() / 1e6:.0f} MB"


def show_range(values, show):
    return f"{show(min(values))} to {show(max(values))}"


def print_table(head, rows):
    """A table in Markdown, with columns as wide as they need."""
    widths = [max(len(row[i]) for row in [head, *rows]) for i in range(len(head))]
    for row in [head, ["-" * width for width in widths], *rows]:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")
    print(flush=True)
