#!/usr/bin/env python3
"""What `skein` does with options that fit together badly, and where the system gets in its way."""

import argparse
import os
import pty
import signal
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SKEIN = ""
SAMPLES = Path()

EXAMPLE = "two-sound"


def run(*words: str, **options) -> subprocess.CompletedProcess:
    options.setdefault("stdin", subprocess.DEVNULL)
    return subprocess.run([SKEIN, *words], capture_output="stdout" not in options, timeout=60,
                          check=False, **options)


def sample() -> str:
    return str(SAMPLES / EXAMPLE)


def one_table(children: int, name: bytes = b"Song") -> bytes:
    """An inventory whose root has so many leaves."""
    header = struct.pack("<BBHIII", 0, 1, 0, 0, 1, 16)
    descriptor = struct.pack("<BBHIII", 3, 1, 0, 32, children + 1, 80)
    root = struct.pack("<III64sBBH", 1, children, 0, b"Home", 7, 0, 0)
    leaf = struct.pack("<III64sBBH", 0xFFFFFFFF, 0, 5, name, 0, 0, 0)
    return header + descriptor + root + leaf * children


class InFolder(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="skein-")
        self.addCleanup(self.folder.cleanup)

    def file(self, content: bytes) -> str:
        path = Path(self.folder.name, "file.inv")
        path.write_bytes(content)
        return str(path)


class CommandLine(unittest.TestCase):
    def expect(self, status: int, start: bytes, *words: str, **options) -> None:
        done = run(*words, **options)
        text = done.stdout if status == 0 else done.stderr
        self.assertEqual(done.returncode, status, words)
        self.assertTrue(text.startswith(start), (words, text))

    def test_usage(self):
        self.expect(0, b"Usage: skein VERB [OPTION...] FILE...\n", "--usage")
        for word in ("--help", "-?", "help"):
            self.expect(0, b"skein: look inside", word)

    def test_what_is_no_verb(self):
        self.expect(64, b"skein: no verb given\n")
        for word in ("-", "", "dumb"):
            self.expect(64, b"skein: no such verb: " + word.encode() + b"\n", word)
        self.expect(64, b"skein: unrecognized option '-x'\n", "-x")

    def test_number_of_files(self):
        for verb in ("dump", "check", "stats"):
            self.expect(64, f"skein {verb}: no file given\n".encode(), verb)
        for verb in ("annotate", "decompile"):
            for files in ([], [sample(), sample()]):
                self.expect(64, f"skein {verb}: exactly one file is needed\n".encode(),
                            verb, *files)

    def test_choices(self):
        plain = run("dump", sample()).stdout
        for choice in ("auto", "never"):
            self.expect(0, plain, "dump", f"--color={choice}", sample())
        self.assertIn(b"\x1b[", run("dump", "--color=always", sample()).stdout)
        self.expect(64, b"skein dump: --color takes auto, always or never, not 'ever'\n",
                    "dump", "--color=ever", sample())
        self.expect(0, plain, "dump", "--json", "--format=text", sample())
        for form in ("json", "jsonl"):
            self.expect(0, b'{"schema":', "dump", f"--format={form}", sample())
        self.assertEqual(run("dump", "--format=json", sample()).stdout,
                         run("dump", "--json", sample()).stdout)

    def test_numbers(self):
        for number in ("", "x", "-1", "5x", "4294967296"):
            self.expect(64, b"skein dump: --depth takes a number from 0 to 4294967295, not '"
                        + number.encode() + b"'\n", "dump", f"--depth={number}", sample())
        self.expect(0, sample().encode(), "dump", "--depth=4294967295", sample())

    def test_lists_that_cannot_be_read(self):
        self.expect(2, b"skein: /no/list: error: No such file or directory\n",
                    "dump", "--files-from=/no/list")
        self.expect(2, b"skein: /: error: Is a directory\n", "dump", "@/")

    def test_a_file_without_a_name(self):
        self.expect(2, b"skein: error: No such file or directory\n", "dump", "")

    def test_a_lone_at_sign_is_a_file(self):
        self.expect(2, b"skein: @: error: No such file or directory\n", "dump", "@")

    def test_standard_input_stays_open_behind_a_list(self):
        self.expect(2, b"skein: -: error: the file is empty\n", "dump", "@-", stdin=None,
                    input=b"-\n")

    def test_comparison_with_what_is_no_inventory(self):
        for files in (("/dev/null", sample()), (sample(), "/dev/null")):
            self.expect(2, b"skein: /dev/null: error: the file is empty\n", "diff", *files)
        done = run("diff", "/dev/null", "/no/file")
        self.assertEqual(done.stderr.count(b"error: "), 2)

    def test_counts_alone_as_json(self):
        full = run("diff", "--json", sample(), str(SAMPLES / "one-sound"))
        counts = run("diff", "--json", "--stat", sample(), str(SAMPLES / "one-sound"))
        self.assertEqual(counts.returncode, full.returncode)
        self.assertLess(len(counts.stdout), len(full.stdout) + 1)
        self.assertNotIn(b'"type"', counts.stdout)


class Colours(unittest.TestCase):
    def on_terminal(self, **environment: str) -> bytes:
        master, terminal = pty.openpty()
        with os.fdopen(master, "rb", buffering=0) as reading, os.fdopen(terminal, "wb") as writing:
            kept = {name: os.environ[name] for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS")
                    if name in os.environ}
            run("dump", "--depth=0", sample(), stdout=writing, env=kept | environment)
            return reading.read(10000)

    def test_only_a_capable_terminal_gets_them(self):
        self.assertIn(b"\x1b[", self.on_terminal(TERM="xterm"))
        self.assertIn(b"\x1b[", self.on_terminal(TERM="xterm", NO_COLOR=""))
        for environment in ({"TERM": "dumb"}, {}, {"TERM": "xterm", "NO_COLOR": "1"}):
            self.assertNotIn(b"\x1b[", self.on_terminal(**environment), environment)


    def test_a_file_gets_none_by_itself(self):
        done = run("dump", "--depth=0", sample(), env=os.environ | {"TERM": "xterm"})
        self.assertNotIn(b"\x1b[", done.stdout)


class Trouble(InFolder):
    def test_standard_input_that_is_closed(self):
        done = run("check", "-", stdin=None, preexec_fn=lambda: os.close(0))
        self.assertEqual((done.returncode, done.stderr),
                         (2, b"skein: -: error: Bad file descriptor\n"))

    def test_large_output_onto_a_full_disk(self):
        name = self.file(one_table(20000))
        for words in (["dump"], ["annotate"], ["decompile"], ["dump", name]):
            with open("/dev/full", "wb") as full:
                done = run(*words, name, stdout=full, stderr=subprocess.PIPE)
            self.assertEqual(done.returncode, 2, words)
            self.assertEqual(done.stderr,
                             b"skein: standard output: error: No space left on device\n")

    def test_usage_on_a_full_disk(self):
        with open("/dev/full", "wb") as full:
            self.assertEqual(run("--usage", stdout=full).returncode, 2)

    def test_help_into_a_closed_pipe(self):
        reading, writing = os.pipe()
        os.close(reading)
        with os.fdopen(writing, "wb") as closed:
            done = run("dump", "--help", stdout=closed, preexec_fn=lambda: signal.signal(
                signal.SIGPIPE, signal.SIG_IGN))
        self.assertEqual(done.returncode, 0)

    def test_a_file_cut_off_while_it_is_read(self):
        name = self.file(one_table(20000))
        with subprocess.Popen([SKEIN, "annotate", name], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            process.stdout.read(1000)
            os.truncate(name, 100)
            output, messages = process.communicate(timeout=60)
        self.assertEqual((process.returncode, messages),
                         (2, b"skein: error: the file changed while it was being read\n"))

    def test_dry_run_of_more_than_a_buffer(self):
        done = run("decompile", "--dry-run", self.file(one_table(20000)))
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))

    def test_output_of_what_comes_from_standard_input(self):
        target = Path(self.folder.name, "menu.xml")
        done = run("decompile", "-", "-o", str(target), stdin=None, input=one_table(3))
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(target.read_bytes().count(b"<media"), 3)

    def test_more_findings_than_are_kept(self):
        for extra, end in ((1, b"          ! 1 more finding not shown, see: skein check\n"),
                           (2, b"          ! 2 more findings not shown, see: skein check\n")):
            done = run("annotate", self.file(one_table(65536 + extra, b"\xff")))
            self.assertTrue(done.stdout.endswith(end), done.stdout[-200:])

    def test_a_quiet_decompiler_still_tells_errors(self):
        damaged = bytearray(one_table(3))
        damaged[1] = 9
        name = self.file(damaged)
        done = run("decompile", "-q", name)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"[header-constant]", done.stderr)
        self.assertEqual(done.stderr, run("decompile", name).stderr)

    def test_a_single_record(self):
        done = run("check", "-v", self.file(one_table(0)))
        self.assertTrue(done.stdout.endswith(b"one-table inventory of 1 record: 0 errors, "
                                             b"0 warnings\n"), done.stdout)


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
