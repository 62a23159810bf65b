#!/usr/bin/env python3
"""What a release's programs bring along against mistakes with memory, read from their own bytes."""

import argparse
import struct
import subprocess
import sys
import tempfile
import unittest
from dataclasses import dataclass
from pathlib import Path

PROGRAMS: list[Path] = []
LIBRARIES: list[Path] = []
FORTIFIED: list[Path] = []
COMPILER = ""

ET_DYN = 3
PT_LOAD, PT_DYNAMIC, PT_GNU_STACK, PT_GNU_RELRO = 1, 2, 0x6474e551, 0x6474e552
PF_EXECUTE, PF_WRITE = 1, 2
DT_TEXTREL, DT_BIND_NOW, DT_FLAGS, DT_FLAGS_1 = 22, 24, 30, 0x6ffffffb
DF_TEXTREL, DF_BIND_NOW, DF_1_NOW, DF_1_PIE = 4, 8, 1, 0x08000000
SHT_DYNSYM = 11


@dataclass
class Segment:
    kind: int
    flags: int
    offset: int
    address: int
    size: int


class Elf:
    """As much of a 64-bit little-endian ELF file as the tests ask about."""

    def __init__(self, path: Path):
        self.data = path.read_bytes()
        if self.data[:6] != b"\x7fELF\x02\x01":
            raise ValueError(f"{path}: not a 64-bit little-endian ELF file")
        self.kind, = struct.unpack_from("<H", self.data, 16)
        self.segments = [Segment(kind, flags, offset, address, size)
                         for kind, flags, offset, address, _, size, _, _
                         in self.table(32, 54, "<IIQQQQQQ")]
        self.dynamic: dict[int, int] = {}
        for segment in self.of_kind(PT_DYNAMIC):
            piece = self.data[segment.offset:segment.offset + segment.size]
            for tag, value in struct.iter_unpack("<qQ", piece):
                self.dynamic.setdefault(tag, value)

    def table(self, where: int, shape: int, layout: str) -> list[tuple]:
        """The header's table whose offset is at `where`, and entry size and count at `shape`."""
        offset, = struct.unpack_from("<Q", self.data, where)
        size, count = struct.unpack_from("<HH", self.data, shape)
        return [struct.unpack_from(layout, self.data, offset + i * size) for i in range(count)]

    def of_kind(self, kind: int) -> list[Segment]:
        return [segment for segment in self.segments if segment.kind == kind]

    def imports(self) -> set[str]:
        """The names of the functions and variables that the loader must find elsewhere."""
        names = set()
        sections = self.table(40, 58, "<IIQQQQIIQQ")
        for _, kind, _, _, offset, size, link, _, _, entry in sections:
            if kind != SHT_DYNSYM:
                continue
            texts = sections[link][4]
            for at in range(offset, offset + size, entry):
                name, _, _, section = struct.unpack_from("<IBBH", self.data, at)
                if name and section == 0:
                    end = self.data.index(b"\0", texts + name)
                    names.add(self.data[texts + name:end].decode())
        return names

    def flag(self, tag: int, bit: int) -> bool:
        return bool(self.dynamic.get(tag, 0) & bit)

    def lacks(self) -> set[str]:
        """The names of the safeguards that are not there."""
        stacks = self.of_kind(PT_GNU_STACK)
        checks = {
            "position-independent": self.kind == ET_DYN and not self.flag(DT_FLAGS, DF_TEXTREL)
            and DT_TEXTREL not in self.dynamic,
            "program": self.flag(DT_FLAGS_1, DF_1_PIE),
            "read-only relocations": bool(self.of_kind(PT_GNU_RELRO)),
            "bound at start": DT_BIND_NOW in self.dynamic or self.flag(DT_FLAGS, DF_BIND_NOW)
            or self.flag(DT_FLAGS_1, DF_1_NOW),
            "plain data on the stack": bool(stacks) and not any(
                segment.flags & PF_EXECUTE for segment in stacks),
            "nothing both written and run": not any(
                segment.flags & PF_EXECUTE and segment.flags & PF_WRITE
                for segment in self.of_kind(PT_LOAD)),
            "guarded stack": "__stack_chk_fail" in self.imports(),
            "checked library calls": any(name.startswith("__") and name.endswith("_chk")
                                         for name in self.imports()),
        }
        return {name for name, there in checks.items() if not there}


class Hardening(unittest.TestCase):
    # Not every program makes a call that the C library has a checked form of.
    def test_programs(self):
        for path in PROGRAMS:
            with self.subTest(path.name):
                self.assertEqual(Elf(path).lacks() - {"checked library calls"}, set())

    def test_libraries(self):
        for path in LIBRARIES:
            with self.subTest(path.name):
                self.assertEqual(Elf(path).lacks() - {"program", "checked library calls"}, set())

    def test_library_calls_are_checked(self):
        for path in FORTIFIED:
            with self.subTest(path.name):
                self.assertNotIn("checked library calls", Elf(path).lacks())

    def test_a_program_without_safeguards_lacks_them_all(self):
        with tempfile.TemporaryDirectory() as scratch:
            source, program = Path(scratch, "bare.cc"), Path(scratch, "bare")
            source.write_text("#include <cstdio>\n"
                              "int main(int count, char** words) {\n"
                              "  char text[9];\n"
                              '  std::sprintf(text, "%s", words[count - 1]);\n'
                              "  std::puts(text);\n"
                              "}\n")
            subprocess.run(
                [COMPILER, "-O2", "-w", "-U_FORTIFY_SOURCE", "-fno-stack-protector", "-fno-pie",
                 "-no-pie", "-Wl,-z,norelro,-z,lazy,-z,execstack", source, "-o", program],
                check=True)
            # No linker makes a segment that is both written and run of this.
            self.assertEqual(Elf(program).lacks(),
                             {"position-independent", "program", "read-only relocations",
                              "bound at start", "plain data on the stack", "guarded stack",
                              "checked library calls"})


def main() -> int:
    global COMPILER
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--compiler", required=True, help="the C++ compiler")
    parser.add_argument("--library", type=Path, action="append", default=[],
                        help="a library that the programs load")
    parser.add_argument("--fortified", type=Path, action="append", default=[],
                        help="a program that must call checked forms of the C library's functions")
    parser.add_argument("programs", type=Path, nargs="+", help="the programs")
    arguments = parser.parse_args()
    COMPILER = arguments.compiler
    PROGRAMS.extend(arguments.programs)
    LIBRARIES.extend(arguments.library)
    FORTIFIED.extend(arguments.fortified)
    result = unittest.main(argv=[sys.argv[0]], exit=False).result
    return 0 if result.wasSuccessful() and result.testsRun else 1


if __name__ == "__main__":
    sys.exit(main())
