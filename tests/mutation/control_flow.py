"""Tells the conditional jumps of a function that somebody wrote from those of the compiler."""

import re
from dataclasses import dataclass

# Destroys an object: a destructor, or what one of a string or an optional becomes.
DESTRUCTOR = re.compile(r"<_ZN.*(D[012]Ev|10_M_disposeEv|8_M_resetEv)(@plt)?>$")
NEVER_RETURNS = re.compile(r"<(_Unwind_Resume|__cxa_(re)?throw|_ZSt\d+__throw_|abort|exit|"
                           r"_ZSt9terminatev|__stack_chk_fail|__cxa_throw_bad_array_new_length)")
HANDLER = "<__cxa_begin_catch"
# What comes before a call to set its arguments.
PREPARES = re.compile(r"^(mov|lea)")


@dataclass(frozen=True)
class Instruction:
    address: int
    code: bytes
    mnemonic: str
    operands: str

    def is_jump(self) -> bool:
        return self.mnemonic.startswith("j")

    def target(self) -> int | None:
        """Where a jump leads; None if that is not in its code."""
        match = re.match(r"([0-9a-f]+) <", self.operands)
        return int(match[1], 16) if match else None

    def calls(self, what: str | re.Pattern) -> bool:
        return self.mnemonic == "call" and re.search(what, self.operands) is not None


def only_destroys(skipped: list[Instruction]) -> bool:
    """Whether all that a jump skips is the end of an object: a temporary that not every way through
    an expression makes, which is nothing that anybody could have tested for."""
    return any(i.calls(DESTRUCTOR) for i in skipped) and all(
        i.calls(DESTRUCTOR) or PREPARES.match(i.mnemonic) for i in skipped)


class Function:
    def __init__(self, instructions: list[Instruction]):
        self.instructions = instructions
        self.index = {ins.address: i for i, ins in enumerate(instructions)}

    def next(self, i: int) -> list[int]:
        """What may run after instruction number i, but for exceptions."""
        ins = self.instructions[i]
        after = []
        if ins.is_jump() and ins.target() in self.index:
            after.append(self.index[ins.target()])
        ends = ins.mnemonic in ("jmp", "ret", "ud2", "hlt") or ins.calls(NEVER_RETURNS)
        if not ends and i + 1 < len(self.instructions):
            after.append(i + 1)
        return after

    def reachable(self, starts: list[int]) -> set[int]:
        found = set(starts)
        pending = list(starts)
        while pending:
            for i in self.next(pending.pop()):
                if i not in found:
                    found.add(i)
                    pending.append(i)
        return found

    def written(self) -> set[int]:
        """The addresses of all code but the clean-up on an exception's way through the function,
        and jumps around the destruction of temporaries. A handler of exceptions is written, and
        so is the choice among several."""
        handlers = [i for i, ins in enumerate(self.instructions) if ins.calls(HANDLER)]
        kept = self.reachable([0, *handlers])
        if handlers:
            before: dict[int, list[int]] = {}
            for i in range(len(self.instructions)):
                for after in self.next(i):
                    before.setdefault(after, []).append(i)
            pending = list(handlers)
            while pending:
                for i in before.get(pending.pop(), []):
                    if i not in kept:
                        kept.add(i)
                        pending.append(i)
        return {self.instructions[i].address for i in kept if not self.skips_destruction(i)}

    def skips_destruction(self, i: int) -> bool:
        ins = self.instructions[i]
        end = self.index.get(ins.target(), 0) if ins.is_jump() else 0
        return end > i and only_destroys(self.instructions[i + 1:end])
