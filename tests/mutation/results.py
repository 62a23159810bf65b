"""What became of the mutants, and which survivors are accepted."""

import json
import re
from collections import defaultdict
from dataclasses import dataclass
from pathlib import Path

CAUGHT, SURVIVED = "caught", "survived"
WAYS = ("always", "never", "either", "changed")


class SurvivorsError(Exception):
    """A survivors.txt or hints.txt that says nothing definite."""


@dataclass(frozen=True)
class Accepted:
    """Says of mutants that no test can tell them from the program."""
    file: str
    function: str
    text: str  # of the line
    way: str

    def covers(self, file: str, function: str, text: str, way: str) -> bool:
        return ((file, function, text) == (self.file, self.function, self.text)
                and self.way in (way, "either"))


def read_accepted(path: Path) -> list[Accepted]:
    accepted = []
    file = function = ""
    reasoned = False
    for number, line in enumerate(path.read_text().splitlines(), 1):
        heading = re.fullmatch(r"(src/\S+)  (\S+)", line)
        entry = re.fullmatch(r"  (\w+): +(\S.*)", line)
        if line.startswith("# "):
            reasoned, file = True, ""
        elif not line:
            reasoned, file = False, ""
        elif reasoned and heading:
            file, function = heading[1], heading[2]
        elif entry and file and entry[1] in WAYS:
            accepted.append(Accepted(file, function, entry[2], entry[1]))
        else:
            raise SurvivorsError(f"{path}:{number}: expected a reason, a function or its mutants")
    return accepted


class Results:
    """The fates of mutants by name, kept in a file to which several runs may append at once."""

    def __init__(self, path: Path):
        self.path = path
        self.fates: dict[str, str] = {}
        if path.exists():
            for line in path.read_text().splitlines():
                name, fate = json.loads(line)
                self.fates[name] = fate

    def add(self, name: str, fate: str) -> None:
        self.fates[name] = fate
        with open(self.path, "a", encoding="utf-8") as file:
            file.write(json.dumps([name, fate]) + "\n")


class SourceLines:
    def __init__(self, root: Path):
        self.root = root
        self.files: dict[str, list[str]] = {}

    def text(self, mutant) -> str:
        """The line that a mutant changes, without its indentation."""
        if mutant.file not in self.files:
            self.files[mutant.file] = (self.root / mutant.file).read_text().splitlines()
        return self.files[mutant.file][mutant.line - 1].strip()


def report(mutants: list, left_out: list, results: Results, accepted: list[Accepted],
           root: Path) -> int:
    """Prints the figures of each folder and the unexplained survivors; returns the exit status."""
    sources = SourceLines(root)
    # made, judged, caught, survived, accepted of those, left out
    figures: dict[str, list[int]] = defaultdict(lambda: [0] * 6)
    unexplained: dict[tuple[str, str], list[str]] = defaultdict(list)
    used = set()
    for mutant in mutants:
        text = sources.text(mutant)
        fate = results.fates.get(mutant.name)
        excuses = [a for a in accepted if a.covers(mutant.file, mutant.function, text, mutant.way)]
        survived = fate == SURVIVED
        counts = (1, fate is not None, fate == CAUGHT, survived, survived and bool(excuses), 0)
        for folder in (str(Path(mutant.file).parent), "all"):
            figures[folder] = [a + b for a, b in zip(figures[folder], counts)]
        if survived:
            used.update(excuses)
            if not excuses:
                changed = f"  -> {mutant.change.text.strip()}" if mutant.way == "changed" else ""
                unexplained[mutant.file, mutant.function].append(
                    f"  {mutant.way + ':':<8} {text}{changed}")
    for mutant in left_out:
        for folder in (str(Path(mutant.file).parent), "all"):
            figures[folder][5] += 1
    for (file, function), lines in unexplained.items():
        print(f"{file}  {function}", *dict.fromkeys(lines), sep="\n")
    print(f"{'':16}{'made':>8}{'run':>8}{'caught':>8}{'%':>7}{'survived':>10}{'accepted':>10}"
          f"{'hints, uncounted':>18}")
    for folder, (made, run, caught, survived, excused, hints) in sorted(
            figures.items(), key=lambda item: (item[0] == "all", item[0])):
        percent = f"{100 * caught / run:.1f}" if run else "-"
        print(f"{folder:16}{made:8}{run:8}{caught:8}{percent:>7}{survived:10}{excused:10}"
              f"{hints:18}")
    stale = [a for a in accepted if a not in used]
    for a in stale:
        print(f"in survivors.txt, but caught or gone: {a.file}  {a.function}  {a.way}: {a.text}")
    made, run, caught, survived, excused, _ = figures["all"]
    good = run == made and survived == excused and not stale and caught >= 0.95 * run
    return 0 if good else 1
