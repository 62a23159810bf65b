"""Runs builds with faults in them and judges what they leave.

A build either leaves the complete, right file and ends with status 0, or says why not and does not
end with 0. Where it goes on without an input, it says that and leaves the file that the rest makes.
"""

import errno
import os
import re
import signal
import struct
import subprocess
import tempfile
import threading
import time
from collections import Counter
from collections.abc import Callable
from dataclasses import dataclass, field
from itertools import count
from pathlib import Path

# Of the caller's environment; see the golden tests.
KEPT_ENVIRONMENT = ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "LD_LIBRARY_PATH", "TMPDIR",
                    "PATH")
BEFORE = b"what was there before\n"  # the content of every output file before the build
# What an abort says last, of the output file. The first memory of all is that for the file's name.
TOLD = (rb"^skeinmake: (std::bad_alloc: |(cannot load the XML reader: [^\n]+|std::bad_alloc"
        rb"|Failed to (read|write) the full amount of requested data): OUT)\n\Z")
MOST_CALLS = 5000  # a series of faults that gets here doesn't end


@dataclass(frozen=True)
class Fault:
    call: str  # open, read, write, close, fstat, new, mmap or thread
    effect: str  # error, half, one, most, signal or append
    value: int = 0  # the error's or signal's number
    onward: bool = False  # befalls every later call, too
    path: str = ""  # the file whose calls these are
    source: str = ""  # what is appended

    def title(self) -> str:
        names = {"error": errno_name(self.value), "signal": f"signal {self.value}",
                 "half": "half of it", "one": "one byte", "most": "all but one byte"}
        what = f"{self.call} {names.get(self.effect, self.effect)}"
        return what + " and on" * self.onward


def errno_name(number: int) -> str:
    return errno.errorcode.get(number, str(number))


@dataclass
class Outcome:
    status: int | None  # negative: the signal that ended it; None: it had to be killed
    stdout: bytes
    stderr: bytes
    output: bytes | None  # the output file's content
    calls: int = 0  # those that the fault could befall
    faults: int = 0  # those that it befell
    seconds: float = 0

    def end(self) -> str:
        if self.status is None:
            return "did not end"
        if self.status < 0:
            return f"ended by {signal.Signals(-self.status).name}"
        return f"status {self.status}"


@dataclass
class Build:
    """A command line, apart from the output file, with what it is to leave."""
    name: str
    words: list[str]
    right: bytes = b""
    # What a build may say on standard output that goes on without an input: for each pattern of a
    # text, whether a file is right then.
    partial: dict[bytes, Callable[[bytes], bool]] = field(default_factory=dict)


def end_of(process: subprocess.Popen, timeout: float) -> tuple[int | None, bytes, bytes]:
    """Status, None if it had to be killed, and what it said."""
    # The second wait is for machines that stand still for a while: the clock goes on then.
    for seconds in (timeout, timeout / 2):
        try:
            stdout, stderr = process.communicate(timeout=seconds)
            return process.returncode, stdout or b"", stderr or b""
        except subprocess.TimeoutExpired:
            pass
    os.killpg(process.pid, signal.SIGKILL)
    stdout, stderr = process.communicate()
    return None, stdout or b"", stderr or b""


class Bench:
    def __init__(self, skeinmake: Path, injector: Path, folder: Path, sanitized: bool):
        self.skeinmake = skeinmake
        self.injector = injector
        self.folder = folder
        self.sanitized = sanitized
        self.tally: Counter[str] = Counter()  # faults by their title
        self.runs = 0
        self.failures: list[str] = []
        self.notes: list[str] = []  # what could not be tried here
        self.lock = threading.Lock()

    def environment(self, preload: bool = False) -> dict[str, str]:
        kept = {name: os.environ[name] for name in KEPT_ENVIRONMENT if name in os.environ}
        kept["LC_ALL"] = "C"
        if preload:
            kept["LD_PRELOAD"] = str(self.injector)
            # The injector hands on what it doesn't fail, so the sanitizer may come second.
            options = [kept["ASAN_OPTIONS"]] if "ASAN_OPTIONS" in kept else []
            kept["ASAN_OPTIONS"] = ":".join([*options, "verify_asan_link_order=0"])
        return kept

    def command(self, build: Build, output: str) -> list[str]:
        return [str(self.skeinmake), *build.words, "-o", output]

    def run(self, build: Build, fault: Fault | None = None, nth: int = 0, *,
            output: str | None = None, wrap: tuple[str, ...] = (), timeout: float = 60,
            environment: dict[str, str] | None = None, before: bytes | None = BEFORE) -> Outcome:
        """One build in a folder of its own, unless its output is elsewhere. "OUT" in the words of
        the wrapper and the path of the fault stands for the output file."""
        with tempfile.TemporaryDirectory(dir=self.folder) as scratch:
            path = output if output is not None else f"{scratch}/out.inv"
            if output is None and before is not None:
                Path(path).write_bytes(before)
            counters = Path(scratch, "counters")
            variables = self.environment(preload=fault is not None) | (environment or {})
            if fault is not None:
                counters.write_bytes(bytes(16))
                variables |= {
                    "FAULT_CALL": fault.call, "FAULT_EFFECT": fault.effect,
                    "FAULT_VALUE": str(fault.value), "FAULT_NTH": str(nth),
                    "FAULT_ONWARD": str(int(fault.onward)), "FAULT_SOURCE": fault.source,
                    "FAULT_PATH": fault.path.replace("OUT", path),
                    "FAULT_COUNTERS": str(counters)}
            words = [word.replace("OUT", path) for word in wrap]
            start = time.monotonic()
            process = subprocess.Popen(
                [*words, *self.command(build, path)], env=variables, stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
            status, stdout, stderr = end_of(process, timeout)
            seconds = time.monotonic() - start
            left = Path(path).read_bytes() if os.path.isfile(path) else None
            calls, faults = struct.unpack("QQ", counters.read_bytes()) if fault else (0, 0)
            with self.lock:
                self.runs += 1
            return Outcome(status, stdout.replace(os.fsencode(path), b"OUT"),
                           stderr.replace(os.fsencode(path), b"OUT"), left, calls, faults, seconds)

    def series(self, build: Build, fault: Fault, least: int = 1, first: int = 1,
               ends: tuple[int, ...] = (-signal.SIGABRT,)) -> int:
        """Lets the fault befall the first call, the second and so on, until there is none left to
        befall. Judges each build. Returns how many calls there were, at least `least`."""
        for nth in count(first):
            outcome = self.run(build, fault, nth)
            title = f"{build.name}: {fault.title()}, call {nth}"
            self.judge(title, build, outcome, ends)
            if outcome.faults == 0:
                reached = nth - 1
                if outcome.calls != reached or outcome.output != build.right:
                    self.fail(title, build, outcome, "the fault-free end of the series is wrong")
                if reached < least:
                    self.fail(title, build, outcome,
                              f"only {reached} calls, at least {least} were expected")
                return reached
            self.count(fault.title())
            if not fault.onward and outcome.faults != 1:
                self.fail(title, build, outcome, f"{outcome.faults} faults instead of one")
            if nth >= MOST_CALLS or outcome.status is None:
                self.fail(title, build, outcome, "the series was given up")
                return nth
        raise AssertionError("not reached")

    def judge(self, title: str, build: Build, outcome: Outcome,
              ends: tuple[int, ...] = (-signal.SIGABRT,)) -> None:
        """`ends`: how the build may end besides with status 0."""
        complaint = self.complaint(build, outcome, ends)
        if complaint:
            self.fail(title, build, outcome, complaint)

    def complaint(self, build: Build, outcome: Outcome, ends: tuple[int, ...]) -> str:
        if outcome.status == 0:
            if not outcome.stdout and not outcome.stderr:
                return "" if outcome.output == build.right else "silently the wrong file"
            for pattern, is_right in build.partial.items():
                if re.fullmatch(pattern, outcome.stdout, re.DOTALL) and not outcome.stderr:
                    return "" if outcome.output is not None and is_right(outcome.output) else (
                        "not the file that the message means")
            return "an unexpected message"
        if outcome.status not in ends:
            return f"{outcome.end()} is not how a build may end"
        told = re.search(TOLD, outcome.stderr, re.MULTILINE)
        if outcome.status == -signal.SIGABRT and not told:
            return "aborted without a message"
        untouched = outcome.output in (None, BEFORE)
        return "" if untouched or build.right.startswith(outcome.output) else (
            "it leaves bytes that are not the inventory's")

    def fail(self, title: str, build: Build, outcome: Outcome, complaint: str) -> None:
        size = "no file" if outcome.output is None else f"{len(outcome.output)} bytes"
        text = (f"FAILED {title}: {complaint}\n  {outcome.end()}, {size} of {len(build.right)}, "
                f"{outcome.calls} calls, {outcome.faults} faults, {outcome.seconds:.2f} s")
        for name, said in (("stdout", outcome.stdout), ("stderr", outcome.stderr)):
            if said:
                text += f"\n  {name}: {said[-600:].decode(errors='replace')}"
        with self.lock:
            self.failures.append(text)

    def count(self, title: str) -> None:
        with self.lock:
            self.tally[title] += 1

    def check(self, condition: bool, title: str, detail: str = "") -> None:
        if not condition:
            with self.lock:
                self.failures.append(f"FAILED {title}: {detail}")

    def note(self, text: str) -> None:
        with self.lock:
            self.notes.append(text)
