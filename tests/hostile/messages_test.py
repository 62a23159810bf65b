"""Messages that repeat what the user gave: to a terminal they are text and nothing else."""

import signal

from program import HostileTest

# Clears a terminal, rings, is no UTF-8, is a control character of Unicode.
EVIL = b"\x1b[2J\x07\xff\xc2\x9b\r\x7f"
SHOWN = b"\\x1B[2J\\x07\\xFF\\xC2\\x9B\\x0D\\x7F"


class Messages(HostileTest):
    def assert_printable(self, text: bytes):
        self.assertTrue(text)
        for character in text.decode():
            self.assertTrue(character.isprintable() or character == "\n", text)

    def test_of_list_files(self):
        tracks, playlists = b"t" + EVIL, b"p" + EVIL
        (self.folder / tracks.decode("utf-8", "surrogateescape")).write_bytes(b"|\n")
        (self.folder / playlists.decode("utf-8", "surrogateescape")).write_bytes(EVIL + b"\n5\n1")
        for program, *words in (
                ("skeinmake", "-M", "INVENTORY", "-t", tracks, "-p", playlists, "-o", "out"),
                ("skeinmake-legacy", "--two-table", "--playlistID", tracks, playlists, "out")):
            done = self.run_program(program, *words)
            self.assertEqual((done.status, done.stdout), (0, b""))
            self.assertEqual(done.stderr, b"t%s:1: expected 8 fields, found 0: line skipped\n"
                             b"p%s:3: playlist \"%s\" has no closing -1\n" % (SHOWN, SHOWN, SHOWN))

    def test_of_files_that_cannot_be_read_or_written(self):
        for words in (("-M", "INVENTORY", "-t", "/dev/null", "-p", "/dev/null"),
                      ("-x", "/dev/null")):
            done = self.run_program("skeinmake", *words, "-o", b"no/" + EVIL)
            self.assertEqual(done.status, -signal.SIGABRT)
            self.assertEqual(done.stderr, b"skeinmake: Failed to write the full amount of "
                             b"requested data: no/%s\n" % SHOWN)
        name = (b"mem" + EVIL).decode("utf-8", "surrogateescape")
        (self.folder / name).symlink_to("/proc/self/mem")
        done = self.run_program("skeinmake", "-M", "INVENTORY", "-t", b"mem" + EVIL, "-p",
                                "/dev/null", "-o", b"out" + EVIL)
        self.assertEqual(done.status, -signal.SIGABRT)
        self.assert_printable(done.stderr)
        self.assertIn(b"mem%s:1: cannot read on: " % SHOWN, done.stderr)

    # Programs that read these look for the very bytes that they gave.
    def test_that_scripts_read_are_left_alone(self):
        done = self.run_program("skeinmake", "-M", "INVENTORY", "-t", EVIL, "-p", EVIL, "-o", "out",
                                b"x" + EVIL)
        self.assertEqual((done.status, done.stderr), (0, b""))
        self.assertEqual(done.stdout, b"IGNORED: [x%s]\nUnable to open file %s"
                         b"Unable to open file %s" % (EVIL, EVIL, EVIL))
        done = self.run_program("skeinmake", b"-M" + EVIL)
        self.assertEqual(done.status, 64)
        self.assertEqual(done.stdout,
                         b"INVALID OPTION: Invalid inputMode specified: [%s]\n" % EVIL)

    def test_of_the_companion_program(self):
        (self.folder / "some").write_bytes(b"no inventory")
        for status, *words in (
                (64, EVIL), (64, b"-" + EVIL), (64, "dump", b"--color=" + EVIL, "some"),
                (64, "dump", b"--format=" + EVIL, "some"), (2, "dump", b"@" + EVIL),
                (2, "dump", b"--files-from=" + EVIL), (64, "check", b"-W" + EVIL, "some"),
                (64, "dump", b"--path=\\" + EVIL, "some"), (64, "dump", b"--depth=" + EVIL, "some"),
                (2, "dump", EVIL), (2, "check", EVIL), (2, "annotate", EVIL), (2, "stats", EVIL),
                (2, "decompile", EVIL), (2, "diff", EVIL, "some"), (2, "diff", "some", EVIL)):
            with self.subTest(words):
                done = self.run_program("skein", *words)
                self.assertEqual((done.status, done.stdout), (status, b""))
                self.assert_printable(done.stderr)
                self.assertIn(b"\\x1B[2J\\x07\\xFF", done.stderr)
