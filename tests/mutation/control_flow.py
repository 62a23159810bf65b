"""Tells the conditional jumps of a function that somebody wrote from those of the compiler."""

import re
from dataclasses import dataclass

# Destroys an object: a destructor, or what one of a string or an optional becomes.
DESTRUCTOR = re.compile(r"<_ZN.*(D[012]Ev|10_M_disposeEv|8_M_resetEv)(@plt)?>$")
NEVER_RETURNS = re.compile(r"<(_Unwind_Resume|__cxa_(re)?throw|_ZSt\d+__throw_|abort|exit|"
                           r"_ZSt9terminatev|__stack_chk_fail|__cxa_throw_bad_array_new_length)")
HANDLER = "<__cxa_begin_catch"
DELETE = re.compile(r"<_Zd[la]Pv")
# What says whether a local static has been made.
GUARD = re.compile(r"<(_ZGV|__cxa_guard_acquire)")
# What comes before a call to set its arguments.
PREPARES = re.compile(r"^(mov|lea)")


@dataclass(frozen=True)
class Instruction:
    address: int
    code: bytes
    mnemonic: str
    operands: str
    comment: str = ""  # the place in memory that an operand counts from here

    def is_jump(self) -> bool:
        return self.mnemonic.startswith("j")

    def is_choice(self) -> bool:
        return self.is_jump() and self.mnemonic != "jmp"

    def target(self) -> int | None:
        """Where a jump leads; None if that is not in its code."""
        match = re.match(r"([0-9a-f]+) <", self.operands)
        return int(match[1], 16) if match else None

    def fills_register(self) -> bool:
        return PREPARES.match(self.mnemonic) is not None and re.search(r",%\w+$",
                                                                       self.operands) is not None

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

    def reachable(self, starts: list[int], closed: tuple[int, int] | None = None) -> set[int]:
        """What may run after any of the instructions `starts`, without the step `closed`."""
        found = set(starts)
        pending = list(starts)
        while pending:
            before = pending.pop()
            for i in self.next(before):
                if i not in found and (before, i) != closed:
                    found.add(i)
                    pending.append(i)
        return found

    def starts(self) -> list[int]:
        return [0, *(i for i, ins in enumerate(self.instructions) if ins.calls(HANDLER))]

    def written(self) -> set[int]:
        """The addresses of all code but what nobody wrote: the clean-up on an exception's way
        through the function and the search for its handler (which itself is written), jumps around
        the destruction of temporaries, the look for a null pointer that a delete takes, and the
        looks whether a local static has been made."""
        return {self.instructions[i].address for i in self.reachable(self.starts())
                if not (self.skips_destruction(i) or self.skips_delete(i) or
                        self.looks_at_guard(i))}

    def skips_destruction(self, i: int) -> bool:
        ins = self.instructions[i]
        end = self.index.get(ins.target(), 0) if ins.is_jump() else 0
        return end > i and only_destroys(self.instructions[i + 1:end])

    def skips_delete(self, i: int) -> bool:
        """Whether all that depends on this jump is the delete of the pointer that is tested just
        before. What follows may be behind the test of another one that is known not to be null."""
        test, ins = self.instructions[i - 1], self.instructions[i]
        tested = test.operands.partition(",")[0]
        ways = [i + 1, self.index.get(ins.target(), i)]
        if (test.mnemonic, test.operands) != ("test", f"{tested},{tested}") or (
                ins.mnemonic not in ("je", "jne")):
            return False
        k, end = ways if ins.mnemonic == "je" else reversed(ways)
        argument, deleted = "%rdi", False
        for _ in self.instructions:
            if k == end or k == len(self.instructions):
                return deleted
            ins = self.instructions[k]
            k = self.index.get(ins.target(), k) if ins.mnemonic == "jmp" else k + 1
            if ins.calls(DELETE):
                if not deleted and argument != tested:
                    return False
                deleted = True
            elif ins.mnemonic == "mov" and ins.operands.endswith(",%rdi"):
                argument = ins.operands.removesuffix(",%rdi")
            elif not (ins.mnemonic == "jmp" or ins.calls(DESTRUCTOR) or ins.fills_register() or
                      deleted and (ins.mnemonic == "test" or self.skips_delete(k - 1))):
                return False
        return False

    def looks_at_guard(self, i: int) -> bool:
        """Whether what was read or called two instructions before, and is tested since, is a local
        static's guard."""
        before = self.instructions[max(i - 2, 0):i]
        return (self.instructions[i].is_jump() and len(before) == 2 and
                before[1].mnemonic == "test" and
                GUARD.search(before[0].operands + before[0].comment) is not None)

    def straight_from(self, i: int) -> list[int]:
        """What runs from instruction number i on, up to the next choice, call or end."""
        found = []
        after = [i]
        while len(after) == 1 and after[0] not in found:
            found.append(after[0])
            after = [] if self.instructions[after[0]].calls("") else self.next(after[0])
        return found

    def loops(self) -> dict[int, dict[int, bool]]:
        """By the addresses of jumps past a loop, those of the jumps in it that may test the same
        condition again, and whether it is when they jump that the loop goes on. No other way leads
        to those."""
        choices = [i for i, ins in enumerate(self.instructions) if ins.is_choice()]
        found: dict[int, dict[int, bool]] = {}
        for i in choices:
            begin = set(self.straight_from(i + 1)) if i + 1 in self.next(i) else set()
            again = {k: not k + 1 in begin for k in choices if k != i and begin & set(self.next(k))}
            outside = self.reachable(self.starts(), closed=(i, i + 1)) if again else set()
            found[self.instructions[i].address] = {
                self.instructions[k].address: jumps for k, jumps in again.items()
                if k not in outside}
        return found
