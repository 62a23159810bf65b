"""The text file of one golden case; run.py describes its format."""

import os
import re
import shlex
import signal
import sys
from dataclasses import dataclass, field
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from escapes import EscapeError, escape_text, unescape_text  # noqa: E402

MARK = "--- "
NAMED = ("file", "dir", "bytes", "absent")
EMPTY = ("dir", "status", "absent")  # sections that have a heading only
REQUIRED = ("stdout", "stderr", "status")


class CaseError(Exception):
    """A case file that says nothing definite; the message names the place."""


def text_to_bytes(lines: list[str]) -> bytes:
    """The content of a text section: each line ends in LF but for one that ends in a lone
    backslash."""
    result = bytearray()
    for line in lines:
        backslashes = len(line) - len(line.rstrip("\\"))
        if backslashes % 2:
            result += unescape_text(line[:-1])
        else:
            result += unescape_text(line) + b"\n"
    return bytes(result)


def bytes_to_text(content: bytes) -> list[str]:
    """The lines that text_to_bytes turns into `content`, safe from editors that strip blanks."""
    pieces = content.split(b"\n")
    last = pieces.pop()
    lines = [_safe_line(escape_text(piece)) for piece in pieces]
    if last:
        lines.append(_safe_line(escape_text(last)) + "\\")
    return lines


def _safe_line(line: str) -> str:
    body = line.rstrip(" ")
    line = body + "\\x20" * (len(line) - len(body))
    return "\\x2d" + line[1:] if line.startswith(MARK) else line


@dataclass
class Section:
    kind: str
    name: str = ""  # the file's name, or the status; as written in the heading, unescaped
    lines: list[str] = field(default_factory=list)

    def content(self) -> bytes:
        return text_to_bytes(self.lines)

    def text(self) -> str:
        heading = MARK + self.kind
        if self.name:
            name = self.name if self.kind == "status" else escape_text(os.fsencode(self.name))
            heading += " " + name
        return "".join(line + "\n" for line in [heading, *self.lines])


@dataclass
class Case:
    path: Path
    head: list[str] = field(default_factory=list)  # the lines before the first section
    program: str = "skeinmake"
    args: list[bytes] = field(default_factory=list)
    env: dict[bytes, bytes] = field(default_factory=dict)
    sections: list[Section] = field(default_factory=list)

    def of_kind(self, kind: str) -> list[Section]:
        return [section for section in self.sections if section.kind == kind]

    def find(self, kind: str, name: str = "") -> Section | None:
        for section in self.of_kind(kind):
            if not name or section.name == name:
                return section
        return None

    def text(self) -> str:
        head = "".join(line + "\n" for line in self.head)
        return head + "".join(section.text() for section in self.sections)

    def check_complete(self) -> None:
        """Raises CaseError unless the case states all that every run has: output and status."""
        missing = [kind for kind in REQUIRED if not self.find(kind)]
        if missing:
            raise CaseError(f"{self.path}: no section {', '.join(missing)}")

    def ends_by_signal(self) -> bool:
        status = self.find("status")
        return status is not None and not status.name.isdigit()


def split_words(text: str) -> list[bytes]:
    """Words quoted as in a shell, except that the backslash escapes are the sections' own."""
    lexer = shlex.shlex(text, posix=True, punctuation_chars=False)
    lexer.whitespace_split = True
    lexer.commenters = ""
    lexer.escape = ""
    return [unescape_text(word) for word in lexer]


def read_case(path: Path) -> Case:
    """Reads a case file. Raises CaseError when it breaks the format; completeness is left to
    check_complete, since a case about to be rewritten may still lack its expectations."""
    case = Case(path)
    number = 0
    try:
        text = path.read_bytes().decode("utf-8")
        for number, line in enumerate(text.removesuffix("\n").split("\n"), 1):
            if line.startswith(MARK):
                case.sections.append(_parse_heading(line))
            elif case.sections:
                _add_line(case.sections[-1], line)
            else:
                _parse_head_line(case, line)
        number = 0
        _check_names(case)
    except (CaseError, EscapeError, ValueError, OSError) as error:
        place = f"{path}:{number}" if number else f"{path}"
        raise CaseError(f"{place}: {error}") from error
    return case


def _parse_head_line(case: Case, line: str) -> None:
    case.head.append(line)
    if not line.strip() or line.startswith("#"):
        return
    key, colon, value = line.partition(":")
    if colon and key == "program":
        case.program = value.strip()
    elif colon and key == "args":
        case.args += split_words(value)
    elif colon and key == "env":
        for word in split_words(value):
            name, equals, setting = word.partition(b"=")
            if not name or not equals:
                raise CaseError(f"not NAME=VALUE: {word!r}")
            case.env[name] = setting
    else:
        raise CaseError(f"expected a comment, program:, args:, env: or a section, got: {line}")


def _parse_heading(line: str) -> Section:
    kind, _, name = line[len(MARK) :].partition(" ")
    if kind in NAMED:
        section = Section(kind, os.fsdecode(unescape_text(name)))
        parts = section.name.split("/")
        if not name or "" in parts or "." in parts or ".." in parts:
            raise CaseError(f"not the name of a file below the case's directory: {line}")
        return section
    if kind == "status":
        if not re.fullmatch(r"[0-9]+", name) and name not in signal.Signals.__members__:
            raise CaseError(f"neither an exit status nor the name of a signal: {line}")
        return Section(kind, name)
    if kind in ("stdout", "stderr") and not name:
        return Section(kind)
    raise CaseError(f"unknown section: {line}")


def _add_line(section: Section, line: str) -> None:
    if section.kind in EMPTY and line.strip():
        raise CaseError(f"a section {section.kind} has no content: {line}")
    if section.kind in ("file", "stdout", "stderr"):
        text_to_bytes([line])  # a bad escape is reported here, with its line number
    section.lines.append(line)


def _check_names(case: Case) -> None:
    seen = set()
    for section in case.sections:
        name = section.name if section.kind in NAMED else ""
        after_run = "bytes" if section.kind == "absent" else section.kind
        before_run = "file" if section.kind == "dir" else after_run
        if (before_run, name) in seen:
            raise CaseError(f"section {section.kind} {name} clashes with an earlier one")
        seen.add((before_run, name))
