#!/usr/bin/env python3
"""Runs golden cases: whole-program runs whose every result is written down.

One case is one text file, <area>/<name>.txt:

    # What the case is about.
    args: -x menu.xml -o out.inv
    --- file menu.xml
    <inventory name="Home"/>
    --- stdout
    --- stderr
    --- status 0
    --- bytes out.inv
    000000 header         00 reserved=0  01 version=1  ...

Head, before the first section: comments (#), `program: NAME` (skeinmake unless given),
`args: WORDS` and `env: NAME=VALUE ...`, words quoted as in a shell; args: and env: may be repeated.

Sections:
    --- file NAME    an input, made before the run; it must be unchanged after the run
    --- dir NAME     an empty directory, made before the run
    --- stdout       all that the program writes to standard output; required
    --- stderr       all that it writes to standard error; required
    --- status N     its exit status, or the signal that ended it, such as SIGABRT; required
    --- bytes NAME   a file's content after the run, as `skein annotate` shows it
    --- absent NAME  this file must not exist after the run

In file, stdout and stderr each line ends in LF, except one that ends in a lone backslash. \\\\, \\t,
\\r and \\xHH (also in names and words) stand for bytes that a text file does not keep well. A file
that the run leaves and no section names is a failure.

Each case runs in a directory of its own, with nothing on standard input. The exit status is 0 when
every case passed, 1 when one failed or is malformed, 2 when the command line is wrong.
"""

import argparse
import difflib
import os
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
from case_file import Case, CaseError, Section, bytes_to_text, read_case  # noqa: E402

DEFAULT_BUILD = HERE.parent.parent / "build" / "release"
# All that a program under test sees of the caller's environment besides PATH.
KEPT_ENVIRONMENT = ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "LD_LIBRARY_PATH", "TMPDIR")


@dataclass
class Setup:
    bin_dir: Path  # holds the programs under their plain names
    wrap: str
    timeout: float
    rewrite: bool


@dataclass
class Outcome:
    """What one run left. A directory's name ends in "/", its content is empty."""
    stdout: bytes
    stderr: bytes
    status: str
    files: dict[str, bytes]
    log: str  # what the wrapper wrote to its {log}


@dataclass
class Verdict:
    passed: bool
    rewritten: bool = False
    report: str = ""


def run_case(case: Case, setup: Setup) -> Outcome:
    """Raises CaseError when the program cannot be started or does not end in time."""
    with tempfile.TemporaryDirectory(prefix="golden-") as scratch:
        directory = Path(scratch, "case")
        directory.mkdir()
        make_inputs(case, directory)
        log = Path(scratch, "log")
        words = {"log": str(log), "leaks": "no" if case.ends_by_signal() else "full"}
        wrap = [word.format_map(words) for word in shlex.split(setup.wrap)]
        # Started by its plain name, so that no message shows where it was built.
        process = subprocess.Popen(
            [*wrap, case.program, *case.args], cwd=directory, env=environment(case, setup),
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            start_new_session=True)
        try:
            stdout, stderr = process.communicate(timeout=setup.timeout)
        except subprocess.TimeoutExpired as error:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            raise CaseError(f"{case.path}: still running after {setup.timeout:g} s") from error
        code = process.returncode
        status = str(code) if code >= 0 else signal.Signals(-code).name
        log_text = log.read_text(errors="replace") if log.exists() else ""
        return Outcome(stdout, stderr, status, read_files(directory), log_text)


def environment(case: Case, setup: Setup) -> dict[bytes, bytes]:
    variables = {name: os.environ[name] for name in KEPT_ENVIRONMENT if name in os.environ}
    variables["LC_ALL"] = "C"
    variables["PATH"] = f"{setup.bin_dir}:{os.environ.get('PATH', os.defpath)}"
    return {os.fsencode(name): os.fsencode(value) for name, value in variables.items()} | case.env


def make_inputs(case: Case, directory: Path) -> None:
    for section in case.of_kind("dir"):
        (directory / section.name).mkdir(parents=True, exist_ok=True)
    for section in case.of_kind("file"):
        path = directory / section.name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(section.content())


def read_files(directory: Path) -> dict[str, bytes]:
    files = {}
    for path in sorted(directory.rglob("*")):
        name = str(path.relative_to(directory))
        if path.is_file():
            files[name] = path.read_bytes()
        else:
            files[name + "/" if path.is_dir() else name] = b""
    return files


def declared_directories(case: Case) -> set[str]:
    names = {f"{section.name}/" for section in case.of_kind("dir")}
    for section in case.of_kind("file") + case.of_kind("dir"):
        names |= {f"{parent}/" for parent in Path(section.name).parents if parent.name}
    return names


def undeclared(case: Case, outcome: Outcome) -> list[str]:
    known = {s.name for s in case.sections if s.kind in ("file", "bytes", "absent")}
    return [name for name in outcome.files if name not in known | declared_directories(case)]


def annotate(data: bytes, setup: Setup) -> list[str]:
    """Every byte of a file once: as skein explains an inventory, or plainly when it is none."""
    skein = setup.bin_dir / "skein"
    if skein.exists():
        shown = subprocess.run([skein, "annotate", "-"], input=data, capture_output=True,
                               env={"LC_ALL": "C", "PATH": os.defpath}, timeout=setup.timeout)
        if shown.returncode in (0, 1):
            return shown.stdout.decode().splitlines()
    return [f"{start:08x}  {data[start:start + 16].hex(' ')}" for start in range(0, len(data), 16)]


def diff(title: str, expected: list[str], actual: list[str]) -> str:
    lines = difflib.unified_diff(expected, actual, f"{title} (expected)", f"{title} (actual)",
                                 lineterm="")
    return "\n".join(lines)


def compare(case: Case, outcome: Outcome, setup: Setup) -> list[str]:
    """One text for each section that the outcome contradicts."""
    faults = []
    streams = {"stdout": outcome.stdout, "stderr": outcome.stderr}
    for section in case.sections:
        title = f"{section.kind} {section.name}".strip()
        actual = outcome.files.get(section.name)
        if section.kind in streams:
            if section.content() != streams[section.kind]:
                faults.append(diff(title, bytes_to_text(section.content()),
                                   bytes_to_text(streams[section.kind])))
        elif section.kind == "status":
            if section.name != outcome.status:
                faults.append(diff("status", [section.name], [outcome.status]))
        elif section.kind == "absent":
            if actual is not None:
                faults.append(f"{title}: the file exists after the run")
        elif section.kind == "bytes":
            if actual is None:
                faults.append(f"{title}: the run left no such file")
            elif annotate(actual, setup) != section.lines:
                faults.append(diff(title, section.lines, annotate(actual, setup)))
        elif section.kind == "file" and not declared_result(case, section.name):
            if actual is None:
                faults.append(f"{title}: the run removed this input")
            elif actual != section.content():
                faults.append(diff(title, bytes_to_text(section.content()),
                                   bytes_to_text(actual)))
    faults += [f"{name}: left by the run, but no section names it"
               for name in undeclared(case, outcome)]
    return faults


def declared_result(case: Case, name: str) -> bool:
    return any(case.find(kind, name) for kind in ("bytes", "absent"))


def rewrite(case: Case, outcome: Outcome, setup: Setup) -> None:
    """Makes the case's expectations those of the outcome. A section that already holds true keeps
    its wording, and so do the head and the inputs."""
    streams = {"stdout": outcome.stdout, "stderr": outcome.stderr}
    for kind in (*streams, "status"):
        if not case.find(kind):
            case.sections.append(Section(kind))
    for name in undeclared(case, outcome):
        if not name.endswith("/"):
            case.sections.append(Section("bytes", name))
    changed_inputs = [section.name for section in case.of_kind("file")
                      if outcome.files.get(section.name) != section.content()]
    for name in changed_inputs:
        if not declared_result(case, name):
            case.sections.append(Section("bytes", name))
    for section in case.sections:
        if section.kind in streams:
            if section.content() != streams[section.kind]:
                section.lines = bytes_to_text(streams[section.kind])
        elif section.kind == "status":
            section.name = outcome.status
        elif section.kind in ("bytes", "absent"):
            actual = outcome.files.get(section.name)
            section.kind = "absent" if actual is None else "bytes"
            section.lines = [] if actual is None else annotate(actual, setup)


def judge(path: Path, setup: Setup) -> Verdict:
    try:
        case = read_case(path)
        if not setup.rewrite:
            case.check_complete()
        if not (setup.bin_dir / case.program).exists():
            raise CaseError(f"{path}: no --program {case.program}=PATH given")
        before = case.text()
        outcome = run_case(case, setup)
    except (CaseError, OSError) as error:
        return Verdict(False, report=f"FAILED {error}")
    if setup.rewrite:
        rewrite(case, outcome, setup)
        if case.text() == before:
            return Verdict(True)
        path.write_text(case.text(), encoding="utf-8")
        return Verdict(True, rewritten=True)
    faults = compare(case, outcome, setup)
    if faults and outcome.log:
        faults.append(f"log of the wrapper:\n{outcome.log.rstrip()}")
    return Verdict(not faults, report="\n".join([f"FAILED {path}", *faults]) if faults else "")


def find_cases(paths: list[Path]) -> list[Path]:
    cases = []
    for path in paths:
        cases += sorted(path.rglob("*.txt")) if path.is_dir() else [path]
    return cases


def link_programs(given: list[str], bin_dir: Path, parser: argparse.ArgumentParser) -> None:
    """Fills bin_dir with the given programs, and with those of the release build by default."""
    programs = {}
    for word in given:
        name, equals, path = word.partition("=")
        if not name or "/" in name or not equals or not shutil.which(os.path.abspath(path)):
            parser.error(f"--program {word}: expected NAME=PATH of an executable file")
        programs[name] = Path(path).resolve()
    if not given and DEFAULT_BUILD.is_dir():
        programs = {path.name: path for path in DEFAULT_BUILD.iterdir()
                    if path.is_file() and os.access(path, os.X_OK)}
    for name, target in programs.items():
        (bin_dir / name).symlink_to(target)


def parse_arguments() -> tuple[argparse.Namespace, argparse.ArgumentParser]:
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("cases", nargs="*", type=Path, default=[HERE], metavar="CASE",
                        help="case files, or folders of them (default: all cases)")
    parser.add_argument("--program", action="append", default=[], metavar="NAME=PATH",
                        help="a program under test (default: those in build/release)")
    parser.add_argument("--wrap", default="", metavar="COMMAND",
                        help="run each program under COMMAND, which must not change its results; "
                        "{log} in it is a file shown when the case fails, {leaks} is 'no' for a "
                        "case that ends by a signal and else 'full'")
    parser.add_argument("--rewrite", action="store_true",
                        help="write what the programs do into the case files")
    parser.add_argument("--timeout", type=float, default=60, metavar="S",
                        help="seconds that one run may take (default: %(default)s)")
    parser.add_argument("-j", "--jobs", type=int, default=len(os.sched_getaffinity(0)),
                        metavar="N", help="cases run at a time (default: one a processor)")
    arguments = parser.parse_args()
    if arguments.rewrite and arguments.wrap:
        parser.error("--rewrite takes the results of the programs alone: leave out --wrap")
    if arguments.jobs < 1:
        parser.error("-j: at least one case must run at a time")
    return arguments, parser


def main() -> int:
    arguments, parser = parse_arguments()
    sys.stdout.reconfigure(errors="backslashreplace")  # file names may be any bytes
    cases = find_cases(arguments.cases)
    if not cases:
        parser.error("no case found")
    # A program that ends by a signal must not leave a core file among its outputs.
    resource.setrlimit(resource.RLIMIT_CORE, (0, resource.getrlimit(resource.RLIMIT_CORE)[1]))
    with tempfile.TemporaryDirectory(prefix="golden-bin-") as bin_dir:
        link_programs(arguments.program, Path(bin_dir), parser)
        setup = Setup(Path(bin_dir), arguments.wrap, arguments.timeout, arguments.rewrite)
        with ThreadPoolExecutor(arguments.jobs) as pool:
            verdicts = list(pool.map(lambda path: judge(path, setup), cases))
    for verdict in verdicts:
        if verdict.report:
            print(verdict.report)
    failed = sum(not verdict.passed for verdict in verdicts)
    done = [f"{len(verdicts) - failed} passed"] if not setup.rewrite else [
        f"{sum(verdict.rewritten for verdict in verdicts)} rewritten",
        f"{sum(verdict.passed and not verdict.rewritten for verdict in verdicts)} unchanged"]
    print(f"golden: {', '.join(done + [f'{failed} failed'] * bool(failed))}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
