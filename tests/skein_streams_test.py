#!/usr/bin/env python3
"""What `skein` does with pipes, closed pipes and full disks."""

import argparse
import os
import signal
import subprocess
import sys
import unittest
from pathlib import Path

SKEIN = ""
SAMPLES = Path()


def run(*words: str, **options) -> subprocess.CompletedProcess:
    return subprocess.run([SKEIN, *words], capture_output="stdout" not in options, timeout=60,
                          check=False, **options)


class Input(unittest.TestCase):
    def test_standard_input_is_a_file_like_any_other(self):
        sample = SAMPLES / "two-sound"
        expected = run("dump", str(sample)).stdout.split(b"\n", 1)[1]
        done = run("dump", "-", input=sample.read_bytes())
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(done.stdout.split(b"\n", 1)[1], expected)
        with open(sample, "rb") as redirected:
            done = run("dump", "-", stdin=redirected)
            self.assertEqual(done.stdout.split(b"\n", 1)[1], expected)

    def test_standard_input_from_the_middle_of_a_file(self):
        with open(SAMPLES / "two-sound", "rb") as middle:
            os.lseek(middle.fileno(), 20, os.SEEK_SET)
            done = run("check", "-", stdin=middle)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"not an inventory", done.stderr)

    def test_an_endless_input_is_left_alone(self):
        done = run("check", "/dev/zero")
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"not an inventory", done.stderr)

    def test_a_file_that_may_not_be_read(self):
        done = run("check", "/proc/self/mem")
        self.assertEqual((done.returncode, done.stdout), (2, b""))


class Output(unittest.TestCase):
    def test_a_full_disk_is_trouble(self):
        for words in (["dump"], ["check", "-v"], ["stats"], ["annotate"], ["decompile"],
                      ["dump", "--json"]):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([SKEIN, *words, str(SAMPLES / "two-sound")], stdout=full,
                                      stderr=subprocess.PIPE, timeout=60, check=False)
            self.assertEqual(done.returncode, 2, words)
            self.assertTrue(done.stderr.endswith(
                b"skein: standard output: error: No space left on device\n"), done.stderr)

    def test_help_on_a_full_disk_is_trouble(self):
        for words in (["--help"], ["--version"], ["dump", "--help"]):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([SKEIN, *words], stdout=full, timeout=60, check=False)
            self.assertEqual(done.returncode, 2, words)

    def test_a_full_disk_named_as_output_is_trouble(self):
        done = run("decompile", str(SAMPLES / "two-sound"), "-o", "/dev/full")
        self.assertEqual(done.returncode, 2)
        self.assertTrue(done.stderr.endswith(
            b"skein: /dev/full: error: No space left on device\n"), done.stderr)

    def closed_pipe(self, handler) -> subprocess.CompletedProcess:
        reading, writing = os.pipe()
        os.close(reading)
        with os.fdopen(writing, "wb") as closed:
            return subprocess.run([SKEIN, "dump", str(SAMPLES / "two-sound")], stdout=closed,
                                  stderr=subprocess.PIPE, timeout=60, check=False,
                                  preexec_fn=lambda: signal.signal(signal.SIGPIPE, handler))

    def test_a_closed_pipe_ends_quietly(self):
        done = self.closed_pipe(signal.SIG_DFL)
        self.assertEqual((done.returncode, done.stderr), (-signal.SIGPIPE, b""))
        done = self.closed_pipe(signal.SIG_IGN)
        self.assertEqual((done.returncode, done.stderr), (0, b""))


def main() -> int:
    global SKEIN, SAMPLES
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--skein", required=True, help="the program")
    parser.add_argument("--inventories", type=Path, required=True, help="folder of samples")
    arguments = parser.parse_args()
    SKEIN, SAMPLES = arguments.skein, arguments.inventories
    result = unittest.main(argv=[sys.argv[0]], exit=False).result
    return 0 if result.wasSuccessful() and result.testsRun else 1


if __name__ == "__main__":
    sys.exit(main())
