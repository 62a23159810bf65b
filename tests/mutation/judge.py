"""Runs the fast tests on mutated programs and tells whether one fails."""

import errno
import hashlib
import json
import math
import os
import pickle
import resource
import signal
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "golden"))
from case_file import Case, CaseError, read_case  # noqa: E402
import run as golden  # noqa: E402

# A test that takes longer is left out.
SLOWEST = 0.6
# One that takes longer than this runs only when all that are faster have passed.
QUICK = 0.03
# In seconds: the end of a program that waits for what never comes; and of one in which nothing else
# is done.
LONGEST_WAIT = 120
LONGEST_IDLENESS = 20


@dataclass
class GroupOfTests:
    """Some tests of one GoogleTest program."""
    program: str
    filter: str
    seconds: float  # that they take together

    def fails(self, directory: Path, scratch: Path) -> bool:
        # The filter can be longer than a word of a command line may be.
        return command_fails([directory / self.program], scratch, 4 + 3 * self.seconds, {
            "GTEST_FILTER": self.filter, "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1"})


@dataclass
class Script:
    """A test that runs programs itself."""
    words: tuple[str, ...]  # its command, in which {bin} is where the programs are

    def fails(self, directory: Path, scratch: Path) -> bool:
        words = [word.replace("{bin}", str(directory)) for word in self.words]
        return command_fails([sys.executable, "-B", *words], scratch, 10, {})


def limit_processor_time(seconds: float) -> None:
    """Other time would count how busy the machine is, too."""
    limit = math.ceil(seconds)
    resource.setrlimit(resource.RLIMIT_CPU, (limit, limit))


def command_fails(command: list, scratch: Path, limit: float, variables: dict[str, str]) -> bool:
    """Whether it ends with another status than 0, or needs more than `limit` seconds of processor
    time for itself or a child."""
    environment = {"PATH": os.defpath, "TMPDIR": str(scratch), "LC_ALL": "C"} | variables
    process = start(command, cwd=scratch, env=environment, stdin=subprocess.DEVNULL,
                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                    preexec_fn=lambda: limit_processor_time(limit))
    try:
        return wait_in_turns(process) != 0
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def wait_in_turns(process: subprocess.Popen) -> int | None:
    """The status of a process that ends. All may be stopped for a while, this program and its
    children alike, so the time on the clock says nothing."""
    before, idle = None, 0
    for _ in range(LONGEST_WAIT):
        try:
            return process.wait(1)
        except subprocess.TimeoutExpired:
            now = session_state(process.pid)
            idle = idle + 1 if now == before and not {"R", "T"} & set(now[1]) else 0
            before = now
            if idle >= LONGEST_IDLENESS:
                break
    return None


def session_state(session: int) -> tuple[int, str]:
    """The processor time, in ticks, that the processes of a session have used, and a letter for the
    state of each."""
    ticks, states = 0, ""
    for stat in Path("/proc").glob("[0-9]*/stat"):
        try:
            fields = stat.read_text().rpartition(")")[2].split()
        except OSError:  # it has just ended
            continue
        if fields[3] == str(session):
            ticks += sum(map(int, fields[11:15]))
            states += fields[0]
    return ticks, states


def start(command: list, **options) -> subprocess.Popen:
    """A program that was written to just now may still be held open by a dying child."""
    for _ in range(50):
        try:
            return subprocess.Popen(command, **options)
        except OSError as error:
            if error.errno != errno.ETXTBSY:
                raise
            time.sleep(0.02)
    raise RuntimeError(f"{command[0]}: remains busy")


def digest(paths: list[Path]) -> str:
    content = hashlib.sha256()
    for path in paths:
        content.update(hashlib.sha256(path.read_bytes()).digest())
    return content.hexdigest()[:16]


class Judge:
    def __init__(self, unit_programs: tuple[str, ...], golden_programs: tuple[str, ...],
                 cases: Path | None, memory: Path, scripts: tuple[tuple[str, ...], ...] = ()):
        self.unit_programs = unit_programs
        self.golden_programs = golden_programs
        self.cases = cases
        self.memory = memory  # a folder to keep what was learnt in
        self.scripts = [Script(words) for words in scripts]
        self.groups: dict[str, list[GroupOfTests]] = {}
        self.expected: list[tuple[Case, golden.Outcome]] = []

    def learn(self, directory: Path) -> None:
        """Takes in what the unchanged programs do. Raises CalledProcessError or RuntimeError when a
        test fails."""
        programs = self.unit_programs + self.golden_programs
        cases = sorted(self.cases.rglob("*.txt")) if self.cases else []
        scripts = [Path(script.words[0]) for script in self.scripts]
        stamp = digest([directory / name for name in programs] + cases + scripts)
        known = self.memory / f"{stamp}.pickle"
        if not known.exists():
            timings = {name: self.time_tests(directory / name) for name in self.unit_programs}
            expected = [(case, golden.run_case(case, self.setup(directory)))
                        for case in map(read_case, cases) if case.program in self.golden_programs]
            with tempfile.TemporaryDirectory(prefix="mutation-") as scratch:
                for script in self.scripts:
                    if script.fails(directory, Path(scratch)):
                        raise RuntimeError(f"{script.words[0]}: fails with the unchanged programs")
            self.memory.mkdir(parents=True, exist_ok=True)
            known.write_bytes(pickle.dumps((timings, expected)))
        timings, self.expected = pickle.loads(known.read_bytes())
        self.groups = {name: self.group(name, tests) for name, tests in timings.items()}

    @staticmethod
    def time_tests(program: Path) -> dict[str, float]:
        with tempfile.TemporaryDirectory(prefix="mutation-") as scratch:
            report = Path(scratch, "report.json")
            subprocess.run([program, f"--gtest_output=json:{report}"], cwd=scratch, check=True,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)
            suites = json.loads(report.read_text())["testsuites"]
        return {f"{suite['name']}.{test['name']}": float(test["time"].removesuffix("s"))
                for suite in suites for test in suite["testsuite"]}

    @staticmethod
    def group(program: str, tests: dict[str, float]) -> list[GroupOfTests]:
        quick = {name: s for name, s in tests.items() if s <= QUICK}
        others = {name: s for name, s in tests.items() if QUICK < s <= SLOWEST}
        return [GroupOfTests(program, ":".join(group), sum(group.values()))
                for group in (quick, others) if group]

    @staticmethod
    def setup(directory: Path) -> golden.Setup:
        return golden.Setup(directory, "prlimit --cpu=4 --", LONGEST_WAIT / 4, False)

    def catches(self, directory: Path, preferred: list[str]) -> bool:
        """Whether a test fails with the programs in `directory`; those of `preferred` come
        first."""
        programs = sorted(self.unit_programs, key=lambda program: program not in preferred)
        with tempfile.TemporaryDirectory(prefix="mutation-") as scratch:
            quick, slow = ([group for program in programs
                            for group in self.groups[program][rank:rank + 1]] for rank in (0, 1))
            return (any(group.fails(directory, Path(scratch)) for group in quick)
                    or self.golden_case_fails(directory)
                    or any(test.fails(directory, Path(scratch)) for test in self.scripts + slow))

    def outcome(self, case: Case, directory: Path) -> golden.Outcome | None:
        """None if it doesn't end in time; the second time, should the first have been an
        interruption of everything."""
        for _ in range(2):
            try:
                return golden.run_case(case, self.setup(directory))
            except CaseError:
                pass
        return None

    def golden_case_fails(self, directory: Path) -> bool:
        for i, (case, expected) in enumerate(self.expected):
            if self.outcome(case, directory) != expected:
                # The next mutant is likely to be one of the same function.
                self.expected.insert(0, self.expected.pop(i))
                return True
        return False
