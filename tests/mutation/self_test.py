#!/usr/bin/env python3
"""Tests of the mutation tools themselves, on a small program made up here."""

import contextlib
import io
import subprocess
import sys
import tempfile
import unittest
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from control_flow import Function, Instruction  # noqa: E402
from hints import leave_out, read_hints  # noqa: E402
from judge import command_fails  # noqa: E402
from machine_code import ALWAYS, NEVER, code_mutants, plain_name, unconditional  # noqa: E402
from mutate import FLAGS  # noqa: E402
from results import (CAUGHT, SURVIVED, Results, SurvivorsError, read_accepted,  # noqa: E402
                     report)
from safety import SoundTests  # noqa: E402
from source_text import Change, changes  # noqa: E402

LIBRARY = """
namespace Orvane {
int clamped(int value) {
  if (value > 9) return 9;
  return value;
}
bool isSeven(int value) {
  return value == 7;
}
int untested(int value) {
  if (value > 9) return 9;
  return value;
}
int sum(const int* numbers, int count) {
  int result = 0;
  for (int i = 0; i < count; ++i) result += clamped(numbers[i]);
  return result;
}
}  // namespace Orvane
"""
MAIN = """
namespace Orvane { int clamped(int value); bool isSeven(int value); int untested(int value); }
int main(int argc, char**) {
  const bool good = Orvane::clamped(8 + argc) == 9 && Orvane::clamped(20 + argc) == 9 &&
                    Orvane::clamped(argc) == 1 && Orvane::isSeven(argc + 6) &&
                    !Orvane::isSeven(argc) && Orvane::untested(argc) < 10;
  return good ? 0 : 1;
}
"""


class CompiledProgram(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mutation-")
        self.addCleanup(folder.cleanup)
        self.base = Path(folder.name)
        self.program = self.base / "program"
        (self.base / "src").mkdir()
        (self.base / "src" / "library.cc").write_text(LIBRARY)
        (self.base / "main.cc").write_text(MAIN)
        subprocess.run(["g++", *FLAGS.split(), "src/library.cc", "main.cc", "-o", "program"],
                       cwd=self.base, check=True)

    def passes(self) -> bool:
        return subprocess.run([self.program], check=False).returncode == 0

    def test_mutants_of_tested_code_are_caught(self):
        unchanged = self.program.read_bytes()
        fates = {}
        for mutant in code_mutants([self.program], self.base):
            self.assertEqual(mutant.file, "src/library.cc")
            for patch in mutant.patches:
                patch.apply(self.base)
            self.assertNotEqual(self.program.read_bytes(), unchanged)
            fates.setdefault(mutant.function, {})[mutant.line, mutant.way] = self.passes()
            for patch in mutant.patches:
                patch.apply(self.base, undo=True)
            self.assertEqual(self.program.read_bytes(), unchanged)
        self.assertEqual(fates["clamped"], {(4, ALWAYS): False, (4, NEVER): False})
        self.assertEqual(fates["isSeven"], {(8, ALWAYS): False, (8, NEVER): False})
        self.assertEqual(fates["untested"], {(11, ALWAYS): True, (11, NEVER): True})

    def test_a_loop_has_one_condition(self):
        found = [m for m in code_mutants([self.program], self.base) if m.function == "sum"]
        self.assertEqual({(m.way, len(m.patches)) for m in found}, {(ALWAYS, 1), (NEVER, 2)})

    def test_a_program_must_be_the_one_that_was_analysed(self):
        (patch, *_), *_ = [m.patches for m in code_mutants([self.program], self.base)]
        self.program.write_bytes(bytes(len(self.program.read_bytes())))
        with self.assertRaises(RuntimeError):
            patch.apply(self.base)


class Instructions(unittest.TestCase):
    def check(self, code: str, always: str, never: str):
        for way, expected in ((ALWAYS, always), (NEVER, never)):
            self.assertEqual(unconditional(bytes.fromhex(code), way), bytes.fromhex(expected), code)

    def test_jumps(self):
        self.check("74 05", "eb 05", "90 90")
        self.check("0f 8f 10 20 30 40", "90 e9 10 20 30 40", "90 90 90 90 90 90")

    def test_sets(self):
        self.check("0f 94 c0", "c6 c0 01", "c6 c0 00")  # sete %al
        self.check("41 0f 9f c4", "41 c6 c4 01", "41 c6 c4 00")  # setg %r12b
        self.check("0f 95 44 24 0f", "c6 44 24 0f 01", "c6 44 24 0f 00")  # setne 15(%rsp)

    def test_moves(self):
        self.check("0f 4f c1", "90 8b c1", "90 90 90")  # cmovg %ecx, %eax
        self.check("4c 0f 44 e0", "90 4c 8b e0", "90 90 90 90")  # cmove %rax, %r12

    def test_others_are_left_alone(self):
        for code in ("c3", "e8 00 00 00 00", "89 c1", "0f b6 c0", "e3 05"):
            self.assertIsNone(unconditional(bytes.fromhex(code), ALWAYS), code)

    def test_names_are_short(self):
        for name, short in (
                ("Orvane::LineReader::fill()", "LineReader::fill"),
                ("Orvane::(anonymous namespace)::isSpace(char)", "isSpace"),
                ("Orvane::IdMap<Orvane::Track const*>::grow()", "IdMap::grow"),
                ("Orvane::addAll(int)::{lambda(int)#2}::operator()(int) const", "addAll::lambda2"),
                ("Orvane::A::add(int) const::{lambda(Orvane::B&)#1}::operator()(Orvane::B&) const",
                 "A::add::lambda1"),
                ("Orvane::OVError::getMessage[abi:cxx11]() const", "OVError::getMessage"),
                ("void Orvane::each<int*>(int*, int*)", "each"),
                ("main", "main")):
            self.assertEqual(plain_name(name), short)


def function(*lines: str) -> Function:
    """Of instructions that are one byte long each, as "jne 5" or "call <name>", from address 0."""
    instructions = []
    for address, line in enumerate(lines):
        mnemonic, _, operands = line.partition(" ")
        operands, _, comment = operands.partition(" #")
        if operands.isdigit():
            operands = f"{int(operands):x} <f>"
        instructions.append(Instruction(address, b"?", mnemonic, operands, comment))
    return Function(instructions)


DESTROY = "call 77 <_ZNSt6stringD1Ev>"
DELETE = "call 77 <_ZdlPvm@plt>"


class ControlFlow(unittest.TestCase):
    def test_jumps_around_the_end_of_an_object_are_the_compilers(self):
        self.assertNotIn(1, function("test", "je 4", "lea", DESTROY, "ret").written())
        for skipped in ("call 77 <_ZN1fEv>", "add"):
            self.assertIn(1, function("test", "je 4", skipped, DESTROY, "ret").written())

    def test_clean_up_on_an_exceptions_way_is_the_compilers(self):
        f = function("call 77 <_ZN1fEv>", "je 3", "nop", "ret", "test", "je 7", "nop",
                     "call 77 <_Unwind_Resume@plt>")
        self.assertEqual(f.written(), {0, 1, 2, 3})

    def test_handlers_are_written_but_not_the_search_for_them(self):
        f = function("call 77 <_ZN1fEv>", "ret", "cmp", "jne 8", "call 77 <__cxa_begin_catch@plt>",
                     "test", "je 1", "jmp 1", "call 77 <_Unwind_Resume@plt>")
        self.assertEqual(f.written(), {0, 1, 4, 5, 6, 7})

    def test_looks_for_null_before_a_delete_are_the_compilers(self):
        def is_written(*skipped: str, test: str = "test %rax,%rax") -> bool:
            end = len(skipped) + 2
            return 1 in function(test, f"je {end}", *skipped, "ret").written()

        self.assertFalse(is_written("mov %rax,%rdi", "mov $0x10,%esi", DELETE))
        self.assertFalse(is_written(DELETE, test="test %rdi,%rdi"))
        self.assertFalse(is_written("mov %rax,%rdi", DESTROY, "mov %rax,%rdi", DELETE))
        self.assertTrue(is_written("mov %rbx,%rdi", DELETE))  # another pointer's
        self.assertTrue(is_written("mov %rax,%rdi", DELETE, "mov %rbx,0x10(%rbp)"))
        self.assertTrue(is_written("call 77 <_ZN1fEv>", "mov %rax,%rdi", DELETE))
        for jump in ("je 3", DELETE, "jmp 3"), ("jne 7", "ret", DELETE, "jmp 6"):
            f = function("nop", "jmp 4", "nop", "ret", "test %rdi,%rdi", *jump)
            self.assertNotIn(5, f.written())
        f = function("test %rax,%rax", "je 6", "mov %rax,%rdi", DELETE, "test %rdi,%rdi", "je 7",
                     DELETE, "ret")  # the second is known not to be null where the first one is
        self.assertFalse({1, 5} & f.written())

    def test_looks_whether_a_local_static_is_made_are_the_compilers(self):
        f = function("movzbl 0x9(%rip),%eax # 9 <_ZGVZ1fvE1s>", "test %al,%al", "je 4", "ret",
                     "call 77 <__cxa_guard_acquire@plt>", "test %eax,%eax", "je 3", "jmp 3")
        self.assertFalse({2, 6} & f.written())
        f = function("movzbl 0x9(%rip),%eax # 9 <_ZL1s>", "test %al,%al", "je 4", "ret", "ret")
        self.assertIn(2, f.written())

    def test_conditions_before_and_in_a_loop_are_known(self):
        at_end = function("je 5", "lea", "nop", "call 77 <_ZN1fEv>", "jne 2", "ret")
        self.assertEqual(at_end.loops(), {0: {4: True}, 4: {}})
        in_front = function("je 6", "jmp 4", "nop", "je 6", "call 77 <_ZN1fEv>", "jmp 2", "ret")
        self.assertEqual(in_front.loops(), {0: {3: False}, 3: {}})

        self.assertEqual(function("jne 3", "je 5", "nop", "nop", "jne 3", "ret").loops()[1], {})


class FickleJudge:
    def __init__(self):
        self.fails = False

    def catches(self, *_) -> bool:
        return self.fails


class Soundness(unittest.TestCase):
    def test_results_count_only_while_the_tests_pass(self):
        with tempfile.TemporaryDirectory(prefix="mutation-") as folder:
            results = Results(Path(folder, "results.jsonl"))
            judge = FickleJudge()
            sound = SoundTests(judge, Path(folder), results)
            sound.add("early", CAUGHT)
            sound.confirm()
            sound.add("late", CAUGHT)
            judge.fails = True
            with self.assertRaises(SystemExit):
                sound.confirm()
            self.assertEqual(Results(results.path).fates, {"early": CAUGHT})


class Judging(unittest.TestCase):
    def fails(self, *command: str) -> bool:
        with tempfile.TemporaryDirectory(prefix="mutation-") as folder:
            return command_fails(list(command), Path(folder), 1, {})

    def test_commands(self):
        self.assertFalse(self.fails("true"))
        self.assertTrue(self.fails("false"))

    def test_endless_work_ends(self):
        self.assertTrue(self.fails("sh", "-c", "while :; do :; done"))


class SourceText(unittest.TestCase):
    def lines(self, text: str, numbers: bool, strings: bool) -> list[str]:
        return [change.text for change in changes(text, numbers, strings)]

    def test_numbers(self):
        self.assertEqual(self.lines("  f(12, 0xFF, 0644, 1U);  // 7", True, False),
                         ["  f(13, 0xFF, 0644, 1U);  // 7", "  f(12, 0x100, 0644, 1U);  // 7",
                          "  f(12, 0xFF, 0645, 1U);  // 7", "  f(12, 0xFF, 0644, 2U);  // 7"])
        self.assertEqual(self.lines("int x2 = u8;", True, False), [])
        self.assertEqual(self.lines("if (c == '|') return;", True, False),
                         ["if (c == '#') return;"])

    def test_strings(self):
        self.assertEqual(changes('say("ab\\n", 1);', False, True),
                         [Change('say("aq\\n", 1);', b"ab\n", b"aq\n")])
        self.assertEqual(self.lines('say("\\n"); say("|");', False, True),
                         ['say("\\n"); say("q");'])

    def test_what_is_no_code_stays(self):
        for line in ('#include "a1.h"', "static_assert(kSize == 4);", '// "text" 5'):
            self.assertEqual(self.lines(line, True, True), [], line)


@dataclass
class Mutant:
    name: str
    line: int
    way: str = ALWAYS
    file: str = "src/a.cc"
    function: str = "f"


class Verdict(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mutation-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "src").mkdir()
        (self.root / "src" / "a.cc").write_text("".join(f"line {i}\n" for i in range(1, 41)))
        self.mutants = [Mutant(f"m{i}", i) for i in range(1, 41)]
        self.results = Results(self.root / "results.jsonl")
        for mutant in self.mutants:
            self.results.add(mutant.name, CAUGHT)

    def status(self, accepted: str = "") -> tuple[int, str]:
        path = self.root / "survivors.txt"
        path.write_text(accepted)
        with contextlib.redirect_stdout(io.StringIO()) as output:
            status = report(self.mutants, [Mutant("hint", 1)],
                            Results(self.root / "results.jsonl"), read_accepted(path), self.root)
        return status, output.getvalue()

    def test_all_caught(self):
        status, output = self.status()
        self.assertEqual(status, 0)
        self.assertRegex(output, r"\nall +40 +40 +40 +100.0 +0 +0 +1\n")

    def test_survivors_need_a_reason(self):
        self.results.add("m7", SURVIVED)
        status, output = self.status()
        self.assertEqual(status, 1)
        self.assertIn("src/a.cc  f\n  always:  line 7\n", output)
        accepted = "# Why.\nsrc/a.cc  f\n  always:  line 7\n"
        self.assertEqual(self.status(accepted)[0], 0)
        self.assertEqual(self.status(accepted.replace("always", "either"))[0], 0)
        self.assertEqual(self.status(accepted.replace("always", "never"))[0], 1)
        self.assertEqual(self.status(accepted.replace("  f", "  g"))[0], 1)

    def test_reasons_must_not_outlive_the_survivors(self):
        status, output = self.status("# Why.\nsrc/a.cc  f\n  always:  line 7\n")
        self.assertEqual(status, 1)
        self.assertIn("caught or gone: src/a.cc  f  always: line 7", output)

    def test_one_in_twenty_may_survive(self):
        accepted = "# Why.\nsrc/a.cc  f\n"
        for i, expected in ((1, 0), (2, 0), (3, 1)):
            self.results.add(f"m{i}", SURVIVED)
            accepted += f"  always:  line {i}\n"
            self.assertEqual(self.status(accepted)[0], expected)

    def test_every_mutant_must_have_been_run(self):
        self.mutants.append(Mutant("new", 5))
        self.assertEqual(self.status()[0], 1)

    def test_a_list_without_reasons_is_refused(self):
        for text in ("src/a.cc  f\n", "# Why.\n  always:  x\n",
                     "# Why.\nsrc/a.cc  f\n  often: x\n"):
            with self.assertRaises(SurvivorsError):
                self.status(text)

    def hinted(self, hints: str) -> tuple[list[str], int]:
        """The names of the mutants that are left out, and the number of useless hints."""
        path = self.root / "hints.txt"
        path.write_text(hints)
        counting, left_out, useless = leave_out(self.mutants, read_hints(path), self.root)
        self.assertEqual(len(counting) + len(left_out), len(self.mutants))
        return [m.name for m in left_out], len(useless)

    def test_hints_leave_out_lines_and_functions(self):
        self.mutants += [Mutant("g", 7, function="g"), Mutant("lambda", 8, function="g::lambda2"),
                         Mutant("other", 9, function="g2"), Mutant("text", 3, function="text")]
        self.assertEqual(self.hinted("# Why.\nsrc/a.cc\n  line 3\n  line 5\n"),
                         (["m3", "m5", "text"], 0))
        self.assertEqual(self.hinted("# Why.\nsrc/a.cc  g\n"), (["g", "lambda"], 0))
        self.assertEqual(self.hinted("# Why.\nsrc/b.cc  g\nsrc/a.cc\n  line\n"), ([], 2))

    def test_hints_without_reasons_are_refused(self):
        for text in ("src/a.cc  f\n", "src/a.cc\n  line 3\n", "# Why.\n  line 3\n",
                     "# Why.\nsrc/a.cc  f\n  line 3\n"):
            with self.assertRaises(SurvivorsError):
                self.hinted(text)


if __name__ == "__main__":
    unittest.main()
