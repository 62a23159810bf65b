"""Which mutants don't count, since what they change decides about time or memory alone."""

import re
from dataclasses import dataclass
from pathlib import Path

from results import SourceLines, SurvivorsError


@dataclass(frozen=True)
class Hint:
    """A function, with the lambdas in it, or a line of source."""
    file: str
    function: str  # empty for a line, wherever it is in the file
    text: str  # of the line

    def covers(self, file: str, function: str, text: str) -> bool:
        if file != self.file:
            return False
        if self.text:
            return text == self.text
        return function == self.function or function.startswith(f"{self.function}::lambda")


def read_hints(path: Path) -> list[Hint]:
    hints = []
    file = ""
    reasoned = False
    for number, line in enumerate(path.read_text().splitlines(), 1):
        heading = re.fullmatch(r"(src/\S+)(?:  (\S+))?", line)
        if line.startswith("# ") or not line:
            reasoned, file = bool(line), ""
        elif reasoned and heading and heading[2]:
            hints.append(Hint(heading[1], heading[2], ""))
            file = ""
        elif reasoned and heading:
            file = heading[1]
        elif file and re.match(r"  \S", line):
            hints.append(Hint(file, "", line.strip()))
        else:
            raise SurvivorsError(f"{path}:{number}: expected a reason, a function or lines")
    return hints


def leave_out(mutants: list, hints: list[Hint], root: Path) -> tuple[list, list, list[Hint]]:
    """The mutants that count, those that don't, and the hints that are of no use."""
    lines = SourceLines(root)
    counting, others, used = [], [], set()
    for mutant in mutants:
        text = lines.text(mutant)
        covering = [h for h in hints if h.covers(mutant.file, mutant.function, text)]
        (others if covering else counting).append(mutant)
        used.update(covering)
    return counting, others, [h for h in hints if h not in used]
