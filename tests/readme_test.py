#!/usr/bin/env python3
"""Runs what README.md tells its readers to run, and compares what comes out.

A ```console block is a terminal session: a line that begins with "$ " is a command (a backslash at
its end continues it on the next line), the lines after it are all that it prints, standard output
and standard error together, blanks at the ends of lines aside. A line of nothing but "..." stands
for any number of lines. Commands must succeed; show a failure with "; echo $?" behind it. They run
one after the other in one directory that looks like the project's after a build: it holds examples/
and build/release/, and the programs are also on PATH.

A ```sh block holds set-up commands that a test cannot run; there are two, and they must exist. A
command shown in any other way is a failure, so that none goes untested.
"""

import argparse
import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SETUP_COMMANDS = ("./demo", "./check")
SHELLS = ("sh", "bash", "shell", "zsh", "shell-session")
FENCE = re.compile(r" {0,3}(`{3,}|~{3,})\s*([^\s`]*)[^`]*$")
PROMPT = "$ "
ANYTHING = "..."


class ReadmeError(Exception):
    """A block that cannot be tested; the message names its line."""


@dataclass
class Block:
    language: str
    line: int  # of the opening fence
    lines: list[str] = field(default_factory=list)


@dataclass
class Command:
    text: str
    line: int
    expected: list[str] = field(default_factory=list)


def read_blocks(text: str) -> list[Block]:
    """The fenced blocks of a Markdown text."""
    blocks = []
    closing = ""
    for number, line in enumerate(text.splitlines(), 1):
        fence = FENCE.match(line)
        if closing:
            stripped = line.strip()
            if stripped.startswith(closing) and not stripped.strip(closing[0]):
                closing = ""
            else:
                blocks[-1].lines.append(line)
        elif fence:
            closing = fence.group(1)
            blocks.append(Block(fence.group(2), number))
    if closing:
        raise ReadmeError(f"line {blocks[-1].line}: this block has no end")
    return blocks


def read_commands(block: Block) -> list[Command]:
    commands = []
    continued = False
    for number, line in enumerate(block.lines, block.line + 1):
        if continued:
            commands[-1].text += "\n" + line
        elif line.startswith(PROMPT):
            commands.append(Command(line.removeprefix(PROMPT), number))
        elif commands:
            commands[-1].expected.append(line.rstrip())
            continue
        else:
            raise ReadmeError(f"line {number}: expected a command, a line that begins with \"$ \"")
        continued = line.endswith("\\")
    if not commands:
        raise ReadmeError(f"line {block.line}: this console block shows no command")
    return commands


def check_setup(block: Block, root: Path) -> None:
    for number, line in enumerate(block.lines, block.line + 1):
        if not line.strip():
            continue
        if line not in SETUP_COMMANDS:
            raise ReadmeError(f"line {number}: not tested, show it in a console block: {line}")
        if not os.access(root / line, os.X_OK) or not (root / line).is_file():
            raise ReadmeError(f"line {number}: no such program: {line}")


def matches(expected: list[str], actual: list[str]) -> bool:
    pattern = "".join("(?:.*\n)*" if line == ANYTHING else re.escape(line) + "\n"
                      for line in expected)
    return re.fullmatch(pattern, "".join(line + "\n" for line in actual)) is not None


def run(command: Command, directory: Path, programs: Path) -> str:
    """What is wrong with the command's result, or nothing."""
    environment = os.environ | {"LC_ALL": "C.UTF-8",
                                "PATH": f"{programs}:{os.environ.get('PATH', os.defpath)}"}
    done = subprocess.run(["bash", "-c", command.text], cwd=directory, env=environment,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=60, check=False)
    text = done.stdout.decode("utf-8", "backslashreplace")
    actual = [line.rstrip() for line in text.splitlines()]
    place = f"line {command.line}: $ {command.text}"
    if done.returncode:
        return "\n".join([f"{place}\nends with status {done.returncode}:", *actual])
    if not matches(command.expected, actual):
        return "\n".join([place, *difflib.unified_diff(command.expected, actual, "README.md",
                                                       "actual", lineterm="")])
    return ""


def prepare(directory: Path, root: Path, programs: Path) -> None:
    shutil.copytree(root / "examples", directory / "examples")
    (directory / "build").mkdir()
    (directory / "build" / "release").symlink_to(programs)


def test_readme(root: Path, programs: Path) -> list[str]:
    commands = []
    for block in read_blocks((root / "README.md").read_text(encoding="utf-8")):
        if block.language == "console":
            commands += read_commands(block)
        elif block.language in SHELLS:
            check_setup(block, root)
        elif any(line.startswith(PROMPT) for line in block.lines):
            raise ReadmeError(f"line {block.line}: shows a command, but is no console block")
    if not commands:
        raise ReadmeError("no console block: nothing shows the reader how to use the programs")
    with tempfile.TemporaryDirectory(prefix="readme-") as scratch:
        prepare(Path(scratch), root, programs)
        faults = [run(command, Path(scratch), programs) for command in commands]
    return [fault for fault in faults if fault]


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=Path, default=ROOT / "build" / "release", metavar="DIR",
                        help="where the built programs are (default: build/release)")
    parser.add_argument("--root", type=Path, default=ROOT, metavar="DIR",
                        help="the project whose README.md is tested (default: this one)")
    arguments = parser.parse_args()
    try:
        faults = test_readme(arguments.root.resolve(), arguments.bin.resolve())
    except (ReadmeError, OSError, subprocess.TimeoutExpired) as error:
        faults = [str(error)]
    for fault in faults:
        print(f"README.md: {fault}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
