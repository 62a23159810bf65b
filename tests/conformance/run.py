#!/usr/bin/env python3
"""Gives skeinmake every document of the XML conformance suite, in both layouts.

No document may crash it or keep it; what the reader says must be one "Exception caught: " and a
reason, or nothing; a document that it refuses must leave the inventory of an empty tree; the
inventory of one that it takes must be sound. How many documents of each kind are taken and refused,
and which of them against the suite's tables, is written down in expected.txt.

The suite's tables call a document "valid", "invalid" (well-formed all the same), "not-wf" or
"error" (readers may do as they like). Those that differ only under XML 1.1, or only under editions
of XML 1.0 before the fifth, are kinds of their own: libxml2 reads the fifth edition of 1.0.
"""

import argparse
import os
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
XML_BASE = "{http://www.w3.org/XML/1998/namespace}base"
COMPLAINT = b"Exception caught: "
TAKEN, REFUSED = "taken", "refused"
WANTED = {"valid": TAKEN, "invalid": TAKEN, "not-wf": REFUSED}


@dataclass
class Setup:
    skeinmake: Path
    skein: Path
    timeout: float
    empty: dict[str, bytes]  # the inventory of an empty tree in each layout


@dataclass
class Outcome:
    document: Path
    verdict: str = ""
    fault: str = ""


def read_tables(suite: Path) -> dict[Path, list[tuple[str, str]]]:
    """Kind and name of the tests that each document stands for."""
    tests: dict[Path, list[tuple[str, str]]] = {}
    pending = [(ElementTree.parse(suite / "cleaned" / "xmlconf-flattened.xml").getroot(),
                suite / "xmlconf")]
    while pending:
        element, base = pending.pop()
        base = base / element.get(XML_BASE, "")
        if element.tag == "TEST":
            document = Path(os.path.normpath(base / element.attrib["URI"]))
            tests.setdefault(document, []).append((kind_of(element), element.attrib["ID"]))
        pending += [(child, base) for child in element]
    return tests


def kind_of(test: ElementTree.Element) -> str:
    kind = test.attrib["TYPE"]
    if test.get("VERSION") == "1.1" or test.get("RECOMMENDATION") in ("XML1.1", "NS1.1"):
        return f"{kind}-in-1.1"
    if "5" not in test.get("EDITION", "5").split():
        return f"{kind}-before-5th-edition"
    return kind


def run(words: list, timeout: float) -> subprocess.CompletedProcess | None:
    """None when the program takes too long."""
    try:
        return subprocess.run(words, stdin=subprocess.DEVNULL, capture_output=True, check=False,
                              timeout=timeout)
    except subprocess.TimeoutExpired:
        return None


def build(setup: Setup, document: Path, layout: str, output: Path) -> tuple[str, bytes]:
    """Runs skeinmake; gives what is wrong with the run, or "", and its standard output."""
    done = run([setup.skeinmake, "-x", document, "-T", layout, "-o", output], setup.timeout)
    if done is None:
        return f"still running after {setup.timeout:g} s", b""
    if done.returncode != 0:
        return f"status {done.returncode}", b""
    if done.stderr:
        return f"on standard error: {done.stderr!r}", b""
    return "", done.stdout


def judge(setup: Setup, document: Path) -> Outcome:
    outcome = Outcome(document)
    with tempfile.TemporaryDirectory(prefix="conformance-") as scratch:
        outputs = {layout: Path(scratch, layout) for layout in setup.empty}
        texts = set()
        for layout, output in outputs.items():
            outcome.fault, text = build(setup, document, layout, output)
            if outcome.fault:
                return outcome
            texts.add(text)
        if len(texts) != 1:
            outcome.fault = f"the layouts' messages differ: {texts}"
            return outcome
        text = texts.pop()
        outcome.verdict = REFUSED if text else TAKEN
        if not text:
            outcome.fault = inspect(setup, list(outputs.values()))
        elif not text.startswith(COMPLAINT) or text.count(COMPLAINT) != 1 or text[-1:] != b"\n":
            outcome.fault = f"on standard output: {text!r}"
        elif any(output.read_bytes() != setup.empty[layout] for layout, output in outputs.items()):
            outcome.fault = "refused, but the tree is not empty"
    return outcome


def inspect(setup: Setup, outputs: list[Path]) -> str:
    done = run([setup.skein, "check", "-q", *outputs], setup.timeout)
    if done is None:
        return f"skein check: still running after {setup.timeout:g} s"
    if done.returncode != 0 or done.stdout or done.stderr:
        return f"skein check: {(done.stdout + done.stderr)[:1000]!r}"
    return ""


def empty_inventories(skeinmake: Path) -> dict[str, bytes]:
    with tempfile.TemporaryDirectory(prefix="conformance-") as scratch:
        menu, output = Path(scratch, "menu.xml"), Path(scratch, "output")
        menu.write_text("<inventory/>")
        inventories = {}
        for layout in ("1", "2"):
            subprocess.run([skeinmake, "-x", menu, "-T", layout, "-o", output], check=True)
            inventories[layout] = output.read_bytes()
    return inventories


def summarize(outcomes: list[Outcome], tests: dict[Path, list[tuple[str, str]]]) -> list[str]:
    """The lines that expected.txt must have, reasons aside."""
    counts: Counter = Counter()
    against = []
    for outcome in outcomes:
        for kind, name in tests.get(outcome.document, [("unlisted", "")]):
            counts[kind, outcome.verdict] += 1
            if kind in WANTED and WANTED[kind] != outcome.verdict:
                against.append(f"{kind} {outcome.verdict} {name}")
    kinds = sorted({kind for kind, _ in counts})
    return [f"{kind}: {counts[kind, TAKEN]} {TAKEN}, {counts[kind, REFUSED]} {REFUSED}"
            for kind in kinds] + sorted(against)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=Path, default=ROOT / "build" / "release", metavar="DIR",
                        help="where the programs are (default: build/release)")
    parser.add_argument("--suite", type=Path, default=ROOT / "build" / "conformance" / "package",
                        metavar="DIR", help="the suite (default: where `fetch` unpacks it)")
    parser.add_argument("--timeout", type=float, default=60, metavar="S",
                        help="seconds that one document may take (default: %(default)s)")
    parser.add_argument("-j", "--jobs", type=int, default=len(os.sched_getaffinity(0)), metavar="N")
    arguments = parser.parse_args()
    suite = arguments.suite.resolve()
    if not (suite / "cleaned").is_dir():
        parser.error(f"{arguments.suite}: no suite there; tests/conformance/fetch brings it")
    setup = Setup(arguments.bin.resolve() / "skeinmake", arguments.bin.resolve() / "skein",
                  arguments.timeout, empty_inventories(arguments.bin.resolve() / "skeinmake"))
    tests = read_tables(suite)
    documents = sorted(set(suite.glob("xmlconf/**/*.xml")) | set(tests))
    with ThreadPoolExecutor(arguments.jobs) as pool:
        outcomes = list(pool.map(lambda document: judge(setup, document), documents))

    faults = [f"{outcome.document.relative_to(suite)}: {outcome.fault}"
              for outcome in outcomes if outcome.fault]
    lines = (HERE / "expected.txt").read_text(encoding="utf-8").splitlines()
    expected = Counter(line for line in lines if line and not line.startswith("#"))
    found = Counter(summarize(outcomes, tests))
    faults += [f"not as expected any more: {line}" for line in sorted((expected - found))]
    faults += [f"not expected: {line}" for line in sorted((found - expected))]
    for fault in faults:
        print(fault)
    print(f"{len(documents)} documents, {sum(map(len, tests.values()))} tests in the suite's "
          f"tables, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
