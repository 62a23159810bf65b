"""Mutants of compiled programs: each conditional instruction made unconditional, in place.

A conditional jump is taken always or never, a conditional set stores 1 or 0, a conditional move
moves always or never. The new bytes are as long as the old ones, so nothing is assembled or linked
again: a mutant costs a few bytes written into a copy of each program that holds the function.
"""

import errno
import hashlib
import re
import struct
import subprocess
import sys
import time
from collections import defaultdict
from dataclasses import dataclass
from pathlib import Path
from typing import BinaryIO

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from control_flow import Function, Instruction  # noqa: E402

NOP = b"\x90"
ALWAYS, NEVER = "always", "never"

FUNCTION = re.compile(r"^([0-9a-f]+) <(.+)>:$")
INSTRUCTION = re.compile(r"^ *([0-9a-f]+):\t((?:[0-9a-f]{2} )+) *\t(\w+) *([^#]*)(.*)")
# The standard library's templates may stand in our object files, but they aren't ours to test.
# Neither are its mutexes, nor what runs the constructors of global objects.
FOREIGN = re.compile(r"^_ZN?K?(S[tabsiod]|9__gnu_cxx)|^_ZL\d+__gthread_|__static_initialization|"
                     "^_GLOBAL__")
CONDITIONAL = re.compile(r"^(j(?!mp)|set|cmov)[a-z]+$")


def open_idle(program: Path) -> BinaryIO:
    """Opens a program for writing, which may have to wait for a killed child to be gone."""
    for _ in range(200):
        try:
            return open(program, "r+b", buffering=0)
        except OSError as error:
            if error.errno != errno.ETXTBSY:
                raise
            time.sleep(0.02)
    raise RuntimeError(f"{program}: remains busy")


@dataclass(frozen=True)
class Patch:
    program: Path
    position: int  # in the file
    old: bytes
    new: bytes

    def apply(self, directory: Path, undo: bool = False) -> None:
        """Changes the copy of the program in `directory`."""
        with open_idle(directory / self.program.name) as file:
            file.seek(self.position)
            if file.read(len(self.old)) != (self.new if undo else self.old):
                raise RuntimeError(f"{self.program.name}: not the program that was analysed")
            file.seek(self.position)
            file.write(self.old if undo else self.new)


@dataclass(frozen=True)
class CodeMutant:
    name: str  # the same for the same code, whatever else is in the program
    file: str
    line: int
    function: str
    way: str  # ALWAYS or NEVER
    patches: tuple[Patch, ...]


def unconditional(code: bytes, way: str) -> bytes | None:
    """The instruction `code` as if its condition held always or never; None if it is none that is
    known here."""
    prefix = b""
    rest = code
    while rest and (rest[0] in (0x66, 0xF2, 0x3E) or 0x40 <= rest[0] <= 0x4F):
        prefix, rest = prefix + rest[:1], rest[1:]
    always = way == ALWAYS
    if len(rest) == 2 and 0x70 <= rest[0] <= 0x7F:
        return prefix + b"\xeb" + rest[1:] if always else NOP * len(code)
    if len(rest) < 3 or rest[0] != 0x0F:
        return None
    kind = rest[1] & 0xF0
    if kind == 0x80 and len(rest) == 6:  # the target counts from the end, which stays in place
        return prefix + NOP + b"\xe9" + rest[2:] if always else NOP * len(code)
    if kind == 0x90:
        return prefix + b"\xc6" + bytes([rest[2] & 0xC7]) + rest[3:] + bytes([always])
    if kind == 0x40:
        return NOP + prefix + b"\x8b" + rest[2:] if always else NOP * len(code)
    return None


@dataclass(frozen=True)
class Conditional:
    symbol: str
    offset: int  # in the function
    position: int
    code: bytes
    mnemonic: str
    written: bool  # not made up by the compiler
    again: dict[int, str]  # where the same condition may be tested in a loop; how it goes on there
    file: str
    line: int


def file_offsets(program: Path) -> list[tuple[int, int, int]]:
    """(address, size, position in the file) of what is loaded from a 64-bit ELF file."""
    data = program.read_bytes()
    (start,) = struct.unpack_from("<Q", data, 32)
    size, count = struct.unpack_from("<HH", data, 54)
    loaded = []
    for i in range(count):
        kind, _, offset, address, _, length = struct.unpack_from("<IIQQQQ", data, start + i * size)
        if kind == 1:
            loaded.append((address, length, offset))
    return loaded


def conditionals(program: Path, base: Path) -> list[Conditional]:
    """The conditional instructions of a program that come from files in `base`/src."""
    listing = subprocess.run(["objdump", "-d", "-w", program], capture_output=True, text=True,
                             check=True).stdout
    functions: dict[tuple[str, int], list[Instruction]] = {}
    instructions: list[Instruction] = []
    for line in listing.splitlines():
        if match := FUNCTION.match(line):
            instructions = functions[match[2], int(match[1], 16)] = []
        elif match := INSTRUCTION.match(line):
            instructions.append(Instruction(int(match[1], 16), bytes.fromhex(match[2]), match[3],
                                            match[4].strip(), match[5]))
    found = []
    for (symbol, start), instructions in functions.items():
        conditional = [i for i in instructions if CONDITIONAL.match(i.mnemonic)]
        if conditional and not FOREIGN.search(symbol):
            function = Function(instructions)
            written, loops = function.written(), function.loops()
            found += [(symbol, i.address - start, i, i.address in written,
                       loops.get(i.address, {})) for i in conditional]
    places = source_places(program, base, [found_one[2].address for found_one in found])
    loaded = file_offsets(program)

    def position(address: int) -> int:
        return next(offset + address - begin for begin, size, offset in loaded
                    if begin <= address < begin + size)

    return [Conditional(symbol, offset, position(i.address), i.code, i.mnemonic, written,
                        {position(a): ALWAYS if jumps else NEVER for a, jumps in again.items()},
                        *place)
            for (symbol, offset, i, written, again), place in zip(found, places)
            if place[0].startswith("src/")]


def source_places(program: Path, base: Path, addresses: list[int]) -> list[tuple[str, int]]:
    """The file, as seen from `base`, and line of each address; ("", 0) where it is elsewhere."""
    shown = subprocess.run(["addr2line", "-e", program], input="".join(f"{a:#x}\n"
                           for a in addresses), capture_output=True, text=True, check=True).stdout
    places = []
    for line in shown.splitlines():
        match = re.fullmatch(rf"{re.escape(str(base))}/([^:]+):(\d+)(?: .*)?", line)
        places.append((match[1], int(match[2])) if match else ("", 0))
    return places


def plain_names(symbols: list[str]) -> dict[str, str]:
    """Functions' names for people: without namespaces of the project, parameters and template
    arguments."""
    shown = subprocess.run(["c++filt"], input="\n".join(symbols), capture_output=True, text=True,
                           check=True).stdout.splitlines()
    return {symbol: plain_name(name) for symbol, name in zip(symbols, shown)}


def plain_name(name: str) -> str:
    name = name.replace("(anonymous namespace)::", "").replace("Orvane::", "")
    name = re.sub(r" \[clone [^]]*\]", "", name)
    name = re.sub(r"\{lambda\(.*?\)#(\d+)\}", r"lambda\1", name)
    name = name.replace("operator()", "call").replace("operator<<", "print")
    name = re.sub(r"operator([<>=!]+)", "compare", name)
    previous = ""
    while previous != name:
        previous, name = name, re.sub(r"<[^<>]*>|\([^()]*\)", "", name)
    name = re.sub(r" const(?=::|$)|\[abi:\w+\]|&+$", "", name.strip())
    return name.split(" ")[-1].removesuffix("::call")


def tested_again(conditionals: list[Conditional]) -> dict[int, int]:
    """Which of a function's conditionals is, within a loop, the same as which one before it. Of
    several conditions in a line it isn't known which are the same."""
    lines: dict[tuple[str, int], list[int]] = defaultdict(list)
    for i, conditional in enumerate(conditionals):
        lines[conditional.file, conditional.line].append(i)
    found = {}
    for pair in lines.values():
        for first, second in (pair, pair[::-1]) if len(pair) == 2 else ():
            if conditionals[second].position in conditionals[first].again:
                found[first] = second
    return found


def code_mutants(programs: list[Path], base: Path) -> list[CodeMutant]:
    """Those of code from `base`/src in any of the programs, which were compiled in `base`."""
    functions: dict[tuple[Path, str], list[Conditional]] = defaultdict(list)
    for program in programs:
        for conditional in conditionals(program, base):
            functions[program, conditional.symbol].append(conditional)
    names = plain_names(sorted({symbol for _, symbol in functions}))

    # All that a change of the source would change is one mutant: a function's copy in each program,
    # and all instances of a template as far as they were compiled alike.
    copies: dict[tuple, list[tuple[Path, list[Conditional]]]] = defaultdict(list)
    for (program, symbol), found in functions.items():
        shape = tuple((c.mnemonic, c.file, c.line) for c in found)
        copies[names[symbol], shape].append((program, found))

    mutants = []
    for (function, _), alike in copies.items():
        symbols = sorted({found[0].symbol for _, found in alike})
        first = next(found for _, found in alike if found[0].symbol == symbols[0])
        # Not the lines: those shift when something is written above the function.
        code = repr([(c.offset, c.mnemonic) for c in first])
        digest = hashlib.sha256(code.encode()).hexdigest()[:8]
        instances = f"{symbols[0]} and {len(symbols) - 1} more" if symbols[1:] else symbols[0]
        again = tested_again(first)
        for i, conditional in enumerate(first):
            if not conditional.written or i in again.values():
                continue
            for way in (ALWAYS, NEVER):
                changed = {i: way}
                # In a loop that is never entered, nothing is tested.
                if way == NEVER and i in again:
                    changed[again[i]] = conditional.again[first[again[i]].position]
                patches = tuple(Patch(program, found[k].position, found[k].code, new)
                                for program, found in alike for k, to in changed.items()
                                if (new := unconditional(found[k].code, to)) is not None)
                if patches:
                    places = "+".join(map(str, changed))
                    name = f"{conditional.file}:{instances}:{digest}:{places}:{way}"
                    mutants.append(CodeMutant(name, conditional.file, conditional.line, function,
                                              way, patches))
    return sorted(mutants, key=lambda mutant: (mutant.file, mutant.line, mutant.name))
