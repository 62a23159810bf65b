"""Mutants of source text: a number made one larger, a letter of a string changed."""

import ast
import re
from dataclasses import dataclass
from pathlib import Path

CHANGED = "changed"

# Where values are part of a format or of what the programs say.
NUMBER_FILES = ("src/output/*.h", "src/output/*.cc", "src/cli/*.cc", "src/errors/*.cc",
                "src/inventory/decimal_number.cc", "src/inventory/list_files.cc",
                "src/inventory/menu_builder.cc", "src/inventory/name_folding.cc",
                "src/inventory/xml_reader.cc", "src/inventory/xml_attribute.cc",
                "src/tree/menu_node.h", "src/io/*.cc")
STRING_FILES = ("src/cli/*.cc", "src/errors/*.cc", "src/errors/*.h", "src/output/*.cc",
                "src/inventory/*.cc", "src/tree/*.cc")

TOKEN = re.compile(r"""
    (?P<comment>//.*|/\*.*?\*/)
  | (?P<string>"(?:[^"\\]|\\.)*")
  | (?P<char>'(?:[^'\\]|\\.)+')
  | (?P<number>(?<![\w.])(?:0[xX][0-9a-fA-F']+|\d[\d']*)(?=[uUlL]*(?![\w.])))
  | (?P<name>[A-Za-z_]\w*)
""", re.VERBOSE)


@dataclass(frozen=True)
class Change:
    """A line as it becomes, and the string in it before and after, if it is one that changes."""
    text: str
    old: bytes = b""
    new: bytes = b""


@dataclass(frozen=True)
class TextMutant:
    name: str
    file: str
    line: int
    way: str
    change: Change
    function: str = "text"


def larger(number: str) -> str:
    digits = number.replace("'", "")
    if digits[:2].lower() == "0x":
        return hex(int(digits, 16) + 1)
    if len(digits) > 1 and digits[0] == "0":
        return f"0{int(digits, 8) + 1:o}"
    return str(int(digits) + 1)


def other_char(char: str) -> str:
    """The character literal with another plain character, or none that would mean the same."""
    return "'#'" if char != "'#'" else "'%'"


def misspelt(string: str) -> str | None:
    """The string literal with another letter, or other character, in the middle."""
    places = [i for i in range(1, len(string) - 1)
              if string[i].isalnum() and not re.search(r"\\(x[0-9a-fA-F]*|\w?)$", string[:i + 1])]
    if not places:
        places = [i for i in range(1, len(string) - 1) if string[i] in " .:,|<>-="]
    if not places:
        return None
    i = places[len(places) // 2]
    return string[:i] + ("q" if string[i] != "q" else "z") + string[i + 1:]


def as_bytes(literal: str) -> bytes:
    """What a string literal stands for; its escapes are those of Python, too."""
    return ast.literal_eval(f"b{literal}") if literal.isascii() else b""


def changes(text: str, numbers: bool, strings: bool) -> list[Change]:
    """All that one change makes of a line of source."""
    if re.match(r"\s*(#|static_assert|using |template|extern \"C\")", text):
        return []
    found = []
    for token in TOKEN.finditer(text):
        def changed(piece: str) -> str:
            return text[:token.start()] + piece + text[token.end():]

        if token["number"] and numbers:
            found.append(Change(changed(larger(token["number"]))))
        elif token["char"] and numbers:
            found.append(Change(changed(other_char(token["char"]))))
        elif token["string"] and strings:
            wrong = misspelt(token["string"])
            if wrong is not None:
                found.append(Change(changed(wrong), as_bytes(token["string"]), as_bytes(wrong)))
    return found


def text_mutants(root: Path) -> list[TextMutant]:
    chosen: dict[Path, set[str]] = {}
    for kind, patterns in (("numbers", NUMBER_FILES), ("strings", STRING_FILES)):
        for pattern in patterns:
            for path in root.glob(pattern):
                chosen.setdefault(path, set()).add(kind)
    mutants = []
    for path, kinds in sorted(chosen.items()):
        file = str(path.relative_to(root))
        seen: dict[tuple[str, str], int] = {}  # lines with equal texts are told apart by count
        for number, text in enumerate(path.read_text().splitlines(), 1):
            for change in changes(text, "numbers" in kinds, "strings" in kinds):
                old, new = text.strip(), change.text.strip()
                count = seen[old, new] = seen.get((old, new), 0) + 1
                name = f"{file}:{old}:{new}:{count}"
                mutants.append(TextMutant(name, file, number, CHANGED, change))
    return mutants
