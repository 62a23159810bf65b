#!/usr/bin/env python3
"""Tests of the golden runner itself, on small programs made up here."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
from case_file import CaseError, bytes_to_text, read_case, split_words, text_to_bytes  # noqa: E402
from escapes import EscapeError, escape_text, unescape_text  # noqa: E402


class EscapesTest(unittest.TestCase):
    def test_readable_text_stands_for_itself(self):
        self.assertEqual(escape_text("Größe 7 – 夜".encode()), "Größe 7 – 夜")

    def test_other_bytes_are_escaped(self):
        self.assertEqual(escape_text(b"a\\\t\r\0\x1b\xff\xc3\xc2\xa0"),
                         "a\\\\\\t\\r\\x00\\x1b\\xff\\xc3\\xc2\\xa0")

    def test_every_pair_of_bytes_comes_back(self):
        texts = set()
        for value in range(0x10000):
            data = value.to_bytes(2, "big")
            texts.add(escape_text(data))
            self.assertEqual(unescape_text(escape_text(data)), data)
        self.assertEqual(len(texts), 0x10000)

    def test_unknown_escapes_are_refused(self):
        for text in ("\\q", "\\x1", "\\xzz", "end\\"):
            with self.subTest(text), self.assertRaises(EscapeError):
                unescape_text(text)

    def test_sections_come_back(self):
        for content in (b"", b"\n", b"a", b"a\n", b"\n\n", b"a\nb", b"a \n  ", b"--- stdout\n",
                        b"a\\", b"a\\\n", b"a\\\\\n", b"# no comment\n", b"\xff\0\r\n"):
            with self.subTest(content):
                self.assertEqual(text_to_bytes(bytes_to_text(content)), content)

    def test_lone_backslash_joins_lines(self):
        self.assertEqual(text_to_bytes(["a\\", "b", "c\\\\", "d\\\\\\"]), b"ab\nc\\\nd\\")

    def test_lines_are_safe_from_editors(self):
        self.assertEqual(bytes_to_text(b"a  \n--- x\n"), ["a\\x20\\x20", "\\x2d-- x"])

    def test_words(self):
        self.assertEqual(split_words(r"""-r 'a b' "c'd" \x20e\\ '' --x="f g" #"""),
                         [b"-r", b"a b", b"c'd", b" e\\", b"", b"--x=f g", b"#"])


class RunnerTest(unittest.TestCase):
    SCRIPT = ('echo "args $*"; printf "oops \\t" >&2\n'
              "[ -z \"$MODE\" ] || echo \"mode $MODE\"\n"
              'case "$1" in\n'
              "  write) printf 'no inventory' > out.inv; exit 3;;\n"
              "  kill) kill -ABRT $$;;\n"
              "  spoil) echo new > in.txt; exit 3;;\n"
              "  sleep) sleep 60;;\n"
              "esac\n")
    WRITE = ("# A comment.\nprogram: fake\nargs: write\n--- file in.txt\nold\n--- stdout\n"
             "args write\n--- stderr\noops \\t\\\n--- status 3\n--- bytes out.inv\n"
             "00000000  6e 6f 20 69 6e 76 65 6e 74 6f 72 79\n")

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name)
        self.fake = self.directory / "some-other-name"
        self.fake.write_text("#!/bin/sh\n" + self.SCRIPT)
        self.fake.chmod(0o755)
        self.case = self.directory / "area" / "case.txt"
        self.case.parent.mkdir()

    def run_case(self, text: str, *options: str) -> tuple[int, str]:
        self.case.write_text(text)
        return self.run_again(*options)

    def run_again(self, *options: str) -> tuple[int, str]:
        done = subprocess.run(
            [sys.executable, HERE / "run.py", "--program", f"fake={self.fake}", *options,
             self.case.parent], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, text=True, check=False)
        return done.returncode, done.stdout

    def assert_fails(self, text: str, *parts: str, options: tuple[str, ...] = ()):
        status, output = self.run_case(text, *options)
        self.assertEqual(status, 1, output)
        self.assertTrue(output.endswith("golden: 0 passed, 1 failed\n"), output)
        for part in (str(self.case), *parts):
            self.assertIn(part, output)

    def test_a_case_that_holds_prints_one_line(self):
        self.assertEqual(self.run_case(self.WRITE), (0, "golden: 1 passed\n"))

    def test_every_wrong_expectation_fails(self):
        for right, wrong, *parts in (
                ("args write\n", "args wrote\n", "stdout", "-args wrote", "+args write"),
                ("args write\n", "args write\\\n", "stdout"),
                ("oops \\t\\", "oops \\t", "stderr", "-oops \\t", "+oops \\t\\"),
                ("status 3", "status 0", "-0", "+3"),
                ("status 3", "status SIGABRT", "-SIGABRT", "+3"),
                ("6e 6f", "6e 6e", "bytes out.inv", "-00000000  6e 6e"),
                ("bytes out.inv", "bytes other.inv", "other.inv: the run left no such file",
                 "out.inv: left by the run, but no section names it"),
                ("args: write\n", "args: spoil\n", "file in.txt", "-old", "+new")):
            with self.subTest(wrong):
                self.assertIn(right, self.WRITE)
                self.assert_fails(self.WRITE.replace(right, wrong), *parts)
        head = self.WRITE.partition("--- bytes")[0]
        self.assert_fails(head, "out.inv: left by the run")
        self.assert_fails(head + "--- absent out.inv\n", "the file exists after the run")

    def test_a_case_must_state_output_and_status(self):
        for missing in ("--- stdout\nargs write\n", "--- stderr\noops \\t\\\n", "--- status 3\n"):
            with self.subTest(missing):
                self.assertIn(missing, self.WRITE)
                self.assert_fails(self.WRITE.replace(missing, ""),
                                  "no section " + missing.split()[1])

    def test_malformed_cases_fail(self):
        for line, part in (("# c\nhello\n", ":2: expected a comment"), ("env: X\n", "NAME=VALUE"),
                           ("args: 'x\n", ":1: No closing quotation"),
                           ("--- output\n", "unknown section"), ("--- status\n", "exit status"),
                           ("--- status SIGNONE\n", "exit status"), ("--- file ../x\n", "below"),
                           ("--- file /x\n", "below"), ("--- file\n", "below"),
                           ("--- stdout\n\\q\n", ":2: unknown escape"),
                           ("--- absent x\ntext\n", "no content"),
                           ("--- stdout\n--- stdout\n", "clashes"),
                           ("--- bytes x\n--- absent x\n", "clashes"),
                           ("--- file x\n--- dir x\n", "clashes")):
            with self.subTest(line):
                self.assert_fails(line, part)

    def test_unknown_program_fails(self):
        self.assert_fails(self.WRITE.replace("fake", "fuke"), "no --program fuke=PATH given")

    def test_signal_environment_and_directory(self):
        text = ("program: fake\nargs: kill\nenv: MODE='a b'\n--- dir d/e\n--- stdout\nargs kill\n"
                "mode a b\n--- stderr\noops \\t\\\n--- status SIGABRT\n--- absent x\n")
        self.assertEqual(self.run_case(text), (0, "golden: 1 passed\n"))

    def test_a_run_that_does_not_end_fails(self):
        self.assert_fails(self.WRITE.replace("args: write", "args: sleep"), "still running",
                          options=("--timeout", "0.3"))

    def test_wrapped_runs(self):
        self.assertEqual(self.run_case(self.WRITE, "--wrap", "env"), (0, "golden: 1 passed\n"))
        wrap = "sh -c 'echo {leaks} leaks > {log}; shift; exec \"$0\" extra'"
        self.assert_fails(self.WRITE, "+args extra", "log of the wrapper:\nfull leaks",
                          options=("--wrap", wrap))
        self.assert_fails(self.WRITE.replace("status 3", "status SIGABRT"), "no leaks",
                          options=("--wrap", wrap))

    def test_rewrite_keeps_comments_and_inputs_and_settles(self):
        head = "# A comment.\n\nprogram: fake\nargs: write\n--- file in.txt\n\\x6fld\n"
        self.assertEqual(self.run_case(head, "--rewrite"),
                         (0, "golden: 1 rewritten, 0 unchanged\n"))
        text = self.case.read_text()
        self.assertTrue(text.startswith(head), text)
        self.assertEqual(self.run_again(), (0, "golden: 1 passed\n"))
        self.assertEqual(self.run_again("--rewrite"), (0, "golden: 0 rewritten, 1 unchanged\n"))
        self.assertEqual(self.case.read_text(), text)

    def test_rewrite_corrects_every_section(self):
        wrong = (self.WRITE.replace("args write\n", "args wrote\n").replace("oops", "ups")
                 .replace("status 3", "status SIGABRT").replace("6e 6f", "6e 6e"))
        self.run_case(wrong + "--- bytes gone.inv\n", "--rewrite")
        self.assertEqual(self.case.read_text(), self.WRITE + "--- absent gone.inv\n")

    def test_rewrite_records_a_changed_input(self):
        self.run_case("program: fake\nargs: spoil\n--- file in.txt\nold\n", "--rewrite")
        self.assertIn("--- bytes in.txt\n00000000  6e 65 77 0a\n",
                      self.case.read_text())
        self.assertEqual(self.run_again(), (0, "golden: 1 passed\n"))

    def test_no_case_is_an_error(self):
        self.assertEqual(self.run_again()[0], 2)

    def test_case_text_comes_back(self):
        self.case.write_text(self.WRITE)
        self.assertEqual(read_case(self.case).text(), self.WRITE)
        with self.assertRaises(CaseError):
            read_case(self.directory / "none.txt")


if __name__ == "__main__":
    unittest.main()
