#!/usr/bin/env python3
"""Breaks the library in one place after the other and sees whether a fast test fails.

    tests/mutation/mutate.py build [FOLDER]  copies and compiles what is to be mutated
    tests/mutation/mutate.py code [FOLDER]   mutants of conditional instructions
    tests/mutation/mutate.py text [FOLDER]   mutants of numbers and strings, each compiled anew
    tests/mutation/mutate.py report [FOLDER] what has been found so far

FOLDER is src or one below it; src alone leaves out the companion program, src/skein and src/reader.
All is done to a copy in build/mutation, which only `build` brings up to date. `code` and `text` go
on where they were interrupted; with --shard I/N, N runs of `code` share the work.

A mutant that no test catches is either a gap in the tests or, when it behaves like the program
itself, explained in survivors.txt. The status of `report` is 0 when every mutant was run, 95 % are
caught and the others are explained.

Two kinds of changes are no mutants, caught or not. What only the compiler asks is never changed:
which handler an exception is for, whether a local static is made or a pointer to delete is null;
and a loop's condition that it tests before the loop and in it is changed in both places. And code
that by its contract decides about time or memory alone is listed in hints.txt.
"""

import argparse
import fcntl
import hashlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
from hints import leave_out, read_hints  # noqa: E402
from judge import Judge  # noqa: E402
from machine_code import CodeMutant, Patch, code_mutants  # noqa: E402
from results import CAUGHT, SURVIVED, Results, SurvivorsError, read_accepted, report  # noqa: E402
from safety import SoundTests, confine, limit_resources  # noqa: E402
from source_text import TextMutant, text_mutants  # noqa: E402

ROOT = HERE.parent.parent
WORK = ROOT / "build" / "mutation"
SOURCE = WORK / "source"  # a copy to break, below which nothing else looks
TREE = WORK / "tree"

# Optimised as far as code stays where it was written: an inlined function would be mutated once for
# each of its callers, and a choice without a jump might not be mutated at all.
FLAGS = ("-O1 -g1 -fno-inline -fno-if-conversion -fno-if-conversion2 -fno-jump-tables "
         "-fno-reorder-blocks-and-partition")


@dataclass(frozen=True)
class Subject:
    """What is mutated together, and what it is tested with."""
    unit_tests: tuple[str, ...]
    programs: tuple[str, ...]  # and what they load
    scripts: tuple[tuple[str, ...], ...] = ()  # commands; {bin} is where the programs are

    def files(self) -> tuple[str, ...]:
        return self.unit_tests + self.programs


MAKER = Subject(("unit_tests", "inventory_tests"),
                ("skeinmake", "skeinmake-legacy", "libskeinmake-xml.so"))
SKEIN_SCRIPT = ("--skein", "{bin}/skein", "--inventories",
                str(ROOT / "fuzz" / "seeds" / "inventory_view"))
SKEIN = Subject(("skein_unit_tests",), ("skein", "libskeinmake-xml.so"), (
    (str(ROOT / "tests" / "skein_streams_test.py"), *SKEIN_SCRIPT),
    (str(ROOT / "tests" / "skein_system_test.py"), *SKEIN_SCRIPT)))


def is_skein(file: str) -> bool:
    return file.startswith(("src/skein", "src/reader"))


def preferred_tests(file: str) -> list[str]:
    return ["inventory_tests"] if file.startswith("src/inventory") else ["unit_tests"]


@contextmanager
def locked():
    """One at a time has the copied source and what is compiled from it."""
    WORK.mkdir(parents=True, exist_ok=True)
    with open(WORK / "lock", "w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield


def copy_source() -> None:
    listed = subprocess.run(["git", "-c", f"safe.directory={ROOT}", "ls-files", "-z", "--cached",
                             "--others", "--exclude-standard"], cwd=ROOT, capture_output=True,
                            check=True).stdout.decode().split("\0")
    wanted = {name for name in listed if name and (ROOT / name).is_file()}
    for name in wanted:
        old, new = SOURCE / name, ROOT / name
        if not old.exists() or old.read_bytes() != new.read_bytes():
            old.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(new, old)
    for path in list(SOURCE.rglob("*")):
        if path.is_file() and str(path.relative_to(SOURCE)) not in wanted:
            path.unlink()


@contextmanager
def edited(mutant: TextMutant):
    """The copied source has the mutant while this lasts, and what it was is kept in a file."""
    path, kept = SOURCE / mutant.file, WORK / "original"
    original = path.read_text()
    kept.write_text(f"{mutant.file}\n{original}")
    lines = original.splitlines()
    lines[mutant.line - 1] = mutant.change.text
    path.write_text("\n".join(lines) + "\n")
    try:
        yield
    finally:
        restore_source()


def restore_source() -> None:
    """Takes back an edit, perhaps one of a run that was killed."""
    kept = WORK / "original"
    if kept.exists():
        file, _, text = kept.read_text().partition("\n")
        (SOURCE / file).write_text(text)
        kept.unlink()


def compile_programs(programs: tuple[str, ...]) -> bool:
    command = ["cmake", "--build", TREE, "--parallel", "2", "--target", *programs]
    return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).returncode == 0


def build(programs: tuple[str, ...]) -> None:
    copy_source()
    subprocess.run(["cmake", "-S", SOURCE, "-B", TREE, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                    "-DCMAKE_CXX_COMPILER=g++", f"-DCMAKE_CXX_FLAGS={FLAGS}",
                    "-DSKEINMAKE_BUILD_TESTS=ON", "-DSKEINMAKE_PRECOMPILE=ON"],
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
    if not compile_programs(programs):
        raise SystemExit("the programs cannot be compiled: see cmake --build build/mutation/tree")


def find_program(name: str) -> Path:
    return next(path for path in (TREE / name, TREE / "tests" / name) if path.exists())


def subject_of(folder: str) -> Subject:
    return SKEIN if is_skein(folder) else MAKER


def copy_programs(names: tuple[str, ...], directory: Path) -> None:
    for name in names:
        shutil.copy(find_program(name), directory / name)


def prepare(folder: str, directory: Path) -> None:
    """Puts the unchanged programs into `directory`."""
    restore_source()
    if not (TREE / "build.ninja").exists() or not compile_programs(subject_of(folder).files()):
        raise SystemExit("there are no programs to mutate: run build first")
    copy_programs(subject_of(folder).files(), directory)


def make_judge(folder: str) -> Judge:
    subject = subject_of(folder)
    return Judge(subject.unit_tests, subject.programs, ROOT / "tests" / "golden",
                 WORK / "learnt", subject.scripts)


def in_shard(name: str, shard: tuple[int, int]) -> bool:
    return int(hashlib.sha256(name.encode()).hexdigest(), 16) % shard[1] == shard[0] - 1


class Deadline:
    def __init__(self, seconds: float):
        self.end = time.monotonic() + seconds

    def has_passed(self) -> bool:
        return time.monotonic() > self.end


def wanted(mutants: list, arguments: argparse.Namespace, results: Results) -> list:
    """Those to run; the ones that have survived, which take long, come last."""
    fates = results.fates
    counting, _, _ = leave_out(mutants, read_hints(HERE / "hints.txt"), SOURCE)
    chosen = [m for m in counting
              if m.file.startswith(f"{arguments.folder}/") and in_shard(m.name, arguments.shard)
              and (m.name not in fates or arguments.retry and fates[m.name] == SURVIVED)]
    return sorted(chosen, key=lambda m: m.name in fates)


def all_code_mutants(folder: str) -> list[CodeMutant]:
    found = code_mutants([find_program(name) for name in subject_of(folder).files()], TREE)
    return [m for m in found if m.file.startswith(f"{folder}/") and is_skein(m.file) ==
            is_skein(folder)]


def all_text_mutants(folder: str) -> list[TextMutant]:
    return [m for m in text_mutants(SOURCE) if m.file.startswith(f"{folder}/")]


def run_code(arguments: argparse.Namespace) -> None:
    results = Results(WORK / "results.jsonl")
    deadline = Deadline(arguments.seconds)
    with tempfile.TemporaryDirectory(prefix="mutation-programs-") as name:
        directory = Path(name)
        with locked():
            prepare(arguments.folder, directory)
            limit_resources()
            judge = make_judge(arguments.folder)
            judge.learn(directory)
            mutants = wanted(all_code_mutants(arguments.folder), arguments, results)
        sound = SoundTests(judge, directory, results)
        for done, mutant in enumerate(mutants):
            if deadline.has_passed():
                sound.confirm()
                print(f"{len(mutants) - done} mutants are left: go on with the same command")
                return
            for patch in mutant.patches:
                patch.apply(directory)
            caught = judge.catches(directory, preferred_tests(mutant.file))
            for patch in mutant.patches:
                patch.apply(directory, undo=True)
            sound.add(mutant.name, CAUGHT if caught else SURVIVED)
        sound.confirm()
    print(f"{len(mutants)} mutants run")


def run_text(arguments: argparse.Namespace) -> None:
    results = Results(WORK / "results.jsonl")
    deadline = Deadline(arguments.seconds)
    with locked(), tempfile.TemporaryDirectory(prefix="mutation-programs-") as name:
        directory, changed = Path(name, "unchanged"), Path(name, "changed")
        directory.mkdir()
        changed.mkdir()
        prepare(arguments.folder, directory)
        limit_resources()
        judge = make_judge(arguments.folder)
        judge.learn(directory)
        mutants = wanted(all_text_mutants(arguments.folder), arguments, results)
        sound = SoundTests(judge, directory, results)
        for done, mutant in enumerate(mutants):
            if deadline.has_passed():
                print(f"{len(mutants) - done} mutants are left: go on with the same command")
                break
            caught = string_is_missed(mutant, arguments.folder, directory, judge)
            if not caught:
                with edited(mutant):
                    caught = edit_is_missed(mutant, arguments.folder, changed, judge)
            sound.add(mutant.name, CAUGHT if caught else SURVIVED)
        else:
            print(f"{len(mutants)} mutants run")
        sound.confirm()


def edit_is_missed(mutant: TextMutant, folder: str, changed: Path, judge: Judge) -> bool:
    """Whether the edited source isn't compiled, or a test fails. Where a golden case does, there is
    no need to compile the unit tests, most of which depend on a header."""
    subject = subject_of(folder)
    if not compile_programs(subject.programs):
        return True
    copy_programs(subject.programs, changed)
    if judge.golden_case_fails(changed):
        return True
    if not compile_programs(subject.unit_tests):
        return True
    copy_programs(subject.unit_tests, changed)
    return judge.catches(changed, preferred_tests(mutant.file))


def string_is_missed(mutant: TextMutant, folder: str, directory: Path, judge: Judge) -> bool:
    """Whether a golden case fails with the string changed in the programs themselves: that takes no
    compiler. Not in the unit tests, which may share the bytes of a string with what they test."""
    patches = []
    for name in subject_of(folder).programs:
        program = directory / name
        content = program.read_bytes()
        old, new = mutant.change.old, mutant.change.new
        if len(old) > 3 and content.count(old) == 1:
            patches.append(Patch(program, content.index(old), old, new))
    if not patches:
        return False
    for patch in patches:
        patch.apply(directory)
    missed = judge.golden_case_fails(directory)
    for patch in patches:
        patch.apply(directory, undo=True)
    return missed


def run_report(arguments: argparse.Namespace) -> int:
    folders = [arguments.folder] + ["src/skein", "src/reader"] * (arguments.folder == "src")
    mutants = {}
    for folder in folders:
        if all(any((d / p).exists() for d in (TREE, TREE / "tests"))
               for p in subject_of(folder).files()):
            found = [*all_code_mutants(folder), *all_text_mutants(folder)]
            mutants |= {mutant.name: mutant for mutant in found}
    accepted, hints = ([e for e in entries if e.file.startswith(f"{arguments.folder}/")] for entries
                       in (read_accepted(HERE / "survivors.txt"), read_hints(HERE / "hints.txt")))
    counting, left_out, useless = leave_out(list(mutants.values()), hints, SOURCE)
    for hint in useless:
        print(f"in hints.txt, but gone: {hint.file}  {hint.function or hint.text}")
    status = report(counting, left_out, Results(WORK / "results.jsonl"), accepted, SOURCE)
    return 1 if useless else status


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("verb", choices=("build", "code", "text", "report"))
    parser.add_argument("folder", nargs="?", default="src")
    parser.add_argument("--shard", default="1/1", metavar="I/N",
                        type=lambda text: tuple(map(int, text.split("/"))),
                        help="run the I-th of N parts of the mutants")
    parser.add_argument("--seconds", type=float, default=float("inf"), metavar="S",
                        help="stop after so many seconds; the next run goes on from there")
    parser.add_argument("--retry", action="store_true",
                        help="run those again that have survived")
    return parser.parse_args()


def main() -> int:
    # An end that leaves nothing behind: no running mutant, no copied programs, no edited source.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    arguments = parse_arguments()
    arguments.folder = arguments.folder.rstrip("/")
    try:
        if arguments.verb == "report":
            return run_report(arguments)
        if arguments.verb == "build":
            with locked():
                build(subject_of(arguments.folder).files())
        else:
            confine(HERE / "mutate.py", WORK)
            (run_code if arguments.verb == "code" else run_text)(arguments)
    except SurvivorsError as error:
        print(error)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
