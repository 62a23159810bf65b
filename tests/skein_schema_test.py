#!/usr/bin/env python3
"""Validates what `skein --format=json` and `--format=jsonl` print against the published schemas, for
every file in a folder of inventories sound and damaged."""

import argparse
import itertools
import json
import subprocess
import sys
from pathlib import Path

import jsonschema

VERBS = ("dump", "check", "stats", "diff")


def load(schemas: Path, verb: str) -> tuple[jsonschema.Draft202012Validator, ...]:
    """The validators of a whole document and of a line."""
    document = json.loads((schemas / f"skein-{verb}.schema.json").read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(document)
    line = {"$defs": document["$defs"], "$ref": "#/$defs/line"}
    return jsonschema.Draft202012Validator(document), jsonschema.Draft202012Validator(line)


def run(skein: str, verb: str, form: str, files: list[str]) -> str:
    done = subprocess.run([skein, verb, f"--format={form}", *files], capture_output=True, timeout=60,
                          check=False)
    if done.returncode not in (0, 1, 2):
        sys.exit(f"skein {verb} {files} ended with {done.returncode}: {done.stderr.decode()}")
    return done.stdout.decode("utf-8")


def check_verb(skein: str, verb: str, inputs: list[list[str]], schemas: Path) -> list[str]:
    document, line = load(schemas, verb)
    faults = []
    for files in inputs:
        text = run(skein, verb, "json", files)
        lines = run(skein, verb, "jsonl", files).splitlines()
        # Two files are compared only if both can be read.
        if verb == "diff" and not text and not lines:
            continue
        pairs = [(document, text)] + [(line, each) for each in lines]
        for validator, words in pairs:
            for error in validator.iter_errors(json.loads(words)):
                faults.append(f"{verb} {files}: {error.message} in {words[:200]}")
    return faults


def reject_wrong(schemas: Path) -> list[str]:
    """Schemas that accept anything would prove nothing."""
    faults = []
    for verb in VERBS:
        document, line = load(schemas, verb)
        for wrong in ({}, {"schema": f"skein-{verb}/2", "files": []}, {"type": "node"}, []):
            if document.is_valid(wrong) or line.is_valid(wrong):
                faults.append(f"the schema of {verb} takes {wrong}")
    return faults


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--skein", required=True, help="the program")
    parser.add_argument("--schemas", type=Path, required=True, help="folder of the schemas")
    parser.add_argument("--inventories", type=Path, required=True, help="folder of files to read")
    arguments = parser.parse_args()

    files = sorted(str(path) for path in arguments.inventories.iterdir())
    singles = [[file] for file in files] + [files[:3]] + [["missing.inv"]]
    pairs = [list(pair) for pair in itertools.product(files[::4], files[::3])]
    faults = reject_wrong(arguments.schemas)
    for verb in VERBS:
        inputs = pairs if verb == "diff" else singles
        faults += check_verb(arguments.skein, verb, inputs, arguments.schemas)
    for fault in faults:
        print(fault)
    print(f"schemas: {len(files)} files, {len(faults)} faults")
    return 1 if faults or len(files) < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
